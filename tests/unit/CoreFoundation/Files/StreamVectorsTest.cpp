#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <array>

#include "tests/support/TemporaryFolder.h"
#include "tests/unit/CoreFoundation/PropertyList/TaggedTree.h"
#include "tests/unit/CoreFoundation/ReferenceVectors.h"

namespace {

using nlohmann::json;
using test_support::TemporaryFolder;

const KnownDifferences kKnownDifferences{};

class StreamVector : public ::testing::TestWithParam<json> {
  protected:
    void TearDown() override {
        if (stream_ != nullptr) {
            CFRelease(stream_);
        }
    }

    void CreateStream() {
        const json& input = GetParam()["input"];
        const std::filesystem::path file = folder_.Path() / input["file"].get<std::string>();
        const json& content = input["content"];
        if (!content.is_null()) {
            if (content.contains("directory")) {
                std::filesystem::create_directories(file);
            } else {
                folder_.Write(file.filename(), VectorBytes(content));
            }
        }
        const CFStringRef path =
            CFStringCreateWithCString(kCFAllocatorDefault, file.c_str(), kCFStringEncodingUTF8);
        const CFURLRef url =
            CFURLCreateWithFileSystemPath(kCFAllocatorDefault, path, kCFURLPOSIXPathStyle, false);
        stream_ = CFReadStreamCreateWithFile(kCFAllocatorDefault, url);
        CFRelease(url);
        CFRelease(path);
    }

    json Read(CFIndex count) {
        std::array<UInt8, 4> buffer{};
        const CFIndex returned = CFReadStreamRead(stream_, buffer.data(), count);
        const CFDataRef data =
            CFDataCreate(kCFAllocatorDefault, buffer.data(), std::max(returned, 0L));
        json answer{{"returned", returned}, {"bytes", TaggedTree(data)["data"]}};
        CFRelease(data);
        return answer;
    }

    json Error() {
        const CFErrorRef error = CFReadStreamCopyError(stream_);
        json answer = TaggedError(error);
        if (error != nullptr) {
            CFRelease(error);
        }
        return answer;
    }

    json PropertyList() {
        CFPropertyListFormat format{};
        CFErrorRef error = nullptr;
        const CFPropertyListRef root = CFPropertyListCreateWithStream(
            kCFAllocatorDefault, stream_, 0, kCFPropertyListImmutable, &format, &error);
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

    json Step(const std::string& step) {
        if (step == "open") {
            return CFReadStreamOpen(stream_) != 0;
        }
        if (step == "close") {
            CFReadStreamClose(stream_);
            return nullptr;
        }
        if (step == "status") {
            return CFReadStreamGetStatus(stream_);
        }
        if (step == "error") {
            return Error();
        }
        if (step == "plist") {
            return PropertyList();
        }
        if (step.starts_with("read")) {
            return Read(step.back() - '0');
        }
        return "no such step";
    }

    TemporaryFolder folder_;
    CFReadStreamRef stream_ = nullptr;
};

// The step "has" is CFReadStreamHasBytesAvailable, which the layer does not have.
TEST_P(StreamVector, EveryStepAnswersAsMeasured) {
    CreateStream();
    ASSERT_EQ(json(stream_ != nullptr), GetParam()["result"]["created"]);
    json actual = json::array();
    json expected = json::array();
    const json& steps = GetParam()["input"]["steps"];
    for (std::size_t index = 0; index < steps.size(); ++index) {
        if (steps[index] != "has") {
            actual.push_back(Step(steps[index]));
            expected.push_back(GetParam()["result"]["steps"][index]);
        }
    }
    ExpectVector(GetParam(), actual, expected, kKnownDifferences);
}

class ReadStream : public ::testing::Test {
  protected:
    // Of a file of the folder, which need not be there.
    CFReadStreamRef Create(const char* name) {
        const CFStringRef path = CFStringCreateWithCString(
            kCFAllocatorDefault, (folder_.Path() / name).c_str(), kCFStringEncodingUTF8);
        const CFURLRef url =
            CFURLCreateWithFileSystemPath(kCFAllocatorDefault, path, kCFURLPOSIXPathStyle, false);
        stream_ = CFReadStreamCreateWithFile(kCFAllocatorDefault, url);
        CFRelease(url);
        CFRelease(path);
        return stream_;
    }
    void TearDown() override { CFRelease(stream_); }

    TemporaryFolder folder_;
    CFReadStreamRef stream_ = nullptr;
};

TEST_F(ReadStream, ClosedBeforeItWasOpenedMayStillBeOpened) {
    folder_.Write("a", "x");
    CFReadStreamRef stream = Create("a");
    CFReadStreamClose(stream);
    EXPECT_EQ(CFReadStreamGetStatus(stream), kCFStreamStatusNotOpen);
    EXPECT_TRUE(CFReadStreamOpen(stream));
    CFReadStreamClose(stream);
    EXPECT_EQ(CFReadStreamGetStatus(stream), kCFStreamStatusClosed);
    EXPECT_FALSE(CFReadStreamOpen(stream));
}

TEST_F(ReadStream, KeepsTheErrorOfAFailedOpenWhenItIsClosed) {
    CFReadStreamRef stream = Create("missing");
    EXPECT_FALSE(CFReadStreamOpen(stream));
    CFReadStreamClose(stream);
    EXPECT_EQ(CFReadStreamGetStatus(stream), kCFStreamStatusError);
    const CFErrorRef error = CFReadStreamCopyError(stream);
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(TaggedError(error), (json{{"domain", "NSPOSIXErrorDomain"}, {"code", ENOENT}}));
    CFRelease(error);
}

TEST_F(ReadStream, KeepsTheErrorOfAFailedReadWhenItIsClosed) {
    CFReadStreamRef stream = Create(".");
    EXPECT_TRUE(CFReadStreamOpen(stream));
    UInt8 byte = 0;
    EXPECT_EQ(CFReadStreamRead(stream, &byte, 1), -1);
    CFReadStreamClose(stream);
    EXPECT_EQ(CFReadStreamGetStatus(stream), kCFStreamStatusError);
    EXPECT_EQ(CFReadStreamRead(stream, &byte, 1), -1);
}

INSTANTIATE_TEST_SUITE_P(Reference, StreamVector,
                         ::testing::ValuesIn(Vectors("cfbundle",
                                                     [](const json& vector) {
                                                         return vector["family"] == "stream";
                                                     })),
                         VectorName);

}  // namespace
