#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"
#include "tests/unit/CoreFoundation/PropertyList/TaggedTree.h"
#include "tests/unit/CoreFoundation/ReferenceVectors.h"

namespace {

using nlohmann::json;
using test_support::TemporaryFolder;

const json kInThirtyTwoBits{
    {"error", nullptr}, {"format", 200}, {"tree", {{"cftype", 3}, {"int", "0"}}}};

const KnownDifferences kKnownDifferences{
    {"bplist-hand-018",
     {{{"data", kInThirtyTwoBits}, {"stream", kInThirtyTwoBits}},
      "the number 0 written in 16 bytes was kept in 64 bits; here CFNumberCreate chooses the "
      "width"}},
};

json Answer(CFPropertyListRef root, CFPropertyListFormat format, CFErrorRef error) {
    json answer{{"tree", TaggedTree(root)}, {"error", TaggedError(error)}};
    if (root != nullptr) {
        answer["format"] = format;
        CFRelease(root);
    }
    if (error != nullptr) {
        CFRelease(error);
    }
    return answer;
}

json AnswerForData(const std::string& bytes, CFOptionFlags options) {
    const CFDataRef data =
        CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(bytes.data()),
                     static_cast<CFIndex>(bytes.size()));
    CFPropertyListFormat format{};
    CFErrorRef error = nullptr;
    const CFPropertyListRef root =
        CFPropertyListCreateWithData(kCFAllocatorDefault, data, options, &format, &error);
    CFRelease(data);
    return Answer(root, format, error);
}

json AnswerForStream(const std::string& bytes, CFOptionFlags options) {
    const TemporaryFolder folder;
    const std::string file = folder.Write("document.plist", bytes);
    const CFStringRef path =
        CFStringCreateWithCString(kCFAllocatorDefault, file.c_str(), kCFStringEncodingUTF8);
    const CFURLRef url =
        CFURLCreateWithFileSystemPath(kCFAllocatorDefault, path, kCFURLPOSIXPathStyle, false);
    const CFReadStreamRef stream = CFReadStreamCreateWithFile(kCFAllocatorDefault, url);
    EXPECT_TRUE(CFReadStreamOpen(stream));
    CFPropertyListFormat format{};
    CFErrorRef error = nullptr;
    const CFPropertyListRef root =
        CFPropertyListCreateWithStream(kCFAllocatorDefault, stream, 0, options, &format, &error);
    CFRelease(stream);
    CFRelease(url);
    CFRelease(path);
    return Answer(root, format, error);
}

json FullAnswer(json answer) {
    answer["tree"] = FullTree(answer["tree"]);
    return answer;
}

class PropertyListVector : public ::testing::TestWithParam<json> {};

TEST_P(PropertyListVector, IsReadFromDataAndFromAStream) {
    const json& vector = GetParam();
    const std::string bytes = VectorBytes(vector["input"]);
    const CFOptionFlags options = vector["input"]["options"];
    const json actual{{"data", AnswerForData(bytes, options)},
                      {"stream", AnswerForStream(bytes, options)}};
    const json& result = vector["result"];
    const json expected{
        {"data", FullAnswer(result["data"])},
        {"stream", FullAnswer(result["stream"] == "same" ? result["data"] : result["stream"])}};
    ExpectVector(vector, actual, expected, kKnownDifferences);
}

INSTANTIATE_TEST_SUITE_P(Reference, PropertyListVector,
                         ::testing::ValuesIn(Vectors("plist_read",
                                                     [](const json&) { return true; })),
                         VectorName);

}  // namespace
