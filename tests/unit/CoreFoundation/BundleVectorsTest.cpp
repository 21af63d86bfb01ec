#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "ReferenceVectors.h"
#include "TaggedTree.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using nlohmann::json;
using test_support::TemporaryFolder;

const KnownDifferences kKnownDifferences{
    {"strings-files-031",
     "a value that is no string came out as the text of its memory; here it counts as missing"},
};

CFStringRef NewString(const json& text) {
    if (text.is_null()) {
        return nullptr;
    }
    return CFStringCreateWithCString(kCFAllocatorDefault, text.get<std::string>().c_str(),
                                     kCFStringEncodingUTF8);
}

void Release(std::initializer_list<CFTypeRef> objects) {
    for (const CFTypeRef object : objects) {
        if (object != nullptr) {
            CFRelease(object);
        }
    }
}

// The bundles of the vectors on disk. The library they were measured with knows no list of the
// user's languages: that is the empty list here.
class BundleVector : public ::testing::TestWithParam<json> {
  protected:
    void SetUp() override { setenv("KRT9_LANGUAGES", "", 1); }
    void TearDown() override { unsetenv("KRT9_LANGUAGES"); }

    CFBundleRef NewBundle() {
        const std::string name = GetParam()["input"]["bundle"];
        for (const auto& [file, content] : VectorFile("cfbundle")["bundles"][name].items()) {
            if (content.contains("directory")) {
                std::filesystem::create_directories(folder_.Path() / name / file);
            } else {
                folder_.Write(std::filesystem::path(name) / file, VectorBytes(content));
            }
        }
        const CFStringRef path = NewString((folder_.Path() / name).string());
        const CFURLRef url =
            CFURLCreateWithFileSystemPath(kCFAllocatorDefault, path, kCFURLPOSIXPathStyle, true);
        const CFBundleRef bundle = CFBundleCreate(kCFAllocatorDefault, url);
        Release({path, url});
        return bundle;
    }

    json LocalizedString(CFBundleRef bundle) {
        const json& input = GetParam()["input"];
        const CFStringRef key = NewString(input["key"]);
        const CFStringRef value = NewString(input["value"]);
        const CFStringRef table = NewString(input["table"]);
        const CFStringRef string = CFBundleCopyLocalizedString(bundle, key, value, table);
        json answer = TaggedTree(string);
        Release({key, value, table, string});
        return answer;
    }

    TemporaryFolder folder_;
};

class LocalizedStringVector : public BundleVector {};

TEST_P(LocalizedStringVector, IsChosenAsMeasured) {
    const CFBundleRef bundle = NewBundle();
    const json actual = bundle == nullptr ? json{{"bundle", nullptr}} : LocalizedString(bundle);
    ExpectVector(GetParam(), actual, GetParam()["result"], kKnownDifferences);
    Release({bundle});
}

INSTANTIATE_TEST_SUITE_P(
    Reference, LocalizedStringVector,
    ::testing::ValuesIn(Vectors(
        "cfbundle",
        [](const json& vector) {
            return vector["call"] ==
                   "CFBundleCreate then CFBundleCopyLocalizedString(bundle, key, value, table)";
        })),
    VectorName);

// Version number, package type and creator, and the number of entries are answers of functions
// that the layer does not have.
class InfoVector : public BundleVector {};

TEST_P(InfoVector, IdentifierAndValueAreAsMeasured) {
    const CFBundleRef bundle = NewBundle();
    ASSERT_NE(bundle, nullptr);
    const CFStringRef key = NewString(GetParam()["input"]["key"]);
    const CFStringRef identifier = CFBundleGetIdentifier(bundle);
    const json actual{{"identifier", identifier == nullptr ? json() : json(Utf8(identifier))},
                      {"value", TaggedTree(CFBundleGetValueForInfoDictionaryKey(bundle, key))}};
    const json& result = GetParam()["result"];
    ExpectVector(GetParam(), actual,
                 {{"identifier", result["identifier"]}, {"value", result["value"]}},
                 kKnownDifferences);
    Release({key, bundle});
}

INSTANTIATE_TEST_SUITE_P(Reference, InfoVector,
                         ::testing::ValuesIn(Vectors("cfbundle",
                                                     [](const json& vector) {
                                                         return vector["family"] == "info";
                                                     })),
                         VectorName);

class LayoutVector : public BundleVector {};

TEST_P(LayoutVector, BundleIsCreatedAsMeasured) {
    const CFBundleRef bundle = NewBundle();
    ExpectVector(GetParam(), bundle != nullptr, GetParam()["result"]["bundle_created"],
                 kKnownDifferences);
    Release({bundle});
}

INSTANTIATE_TEST_SUITE_P(Reference, LayoutVector,
                         ::testing::ValuesIn(Vectors("cfbundle",
                                                     [](const json& vector) {
                                                         return vector["family"] == "layout";
                                                     })),
                         VectorName);

// So many vectors are of functions that nothing here calls. A vector of any other family is one of
// the tests above or in the files on URLs and streams.
TEST(BundleVectors, OnlyThoseOfFunctionsThatTheLayerLacksAreLeftOut) {
    const std::map<std::string, std::size_t> leftOut{
        {"localizations", 8},  // CFBundleCopyBundleLocalizations, CFBundleGetDevelopmentRegion
        {"resource", 5},       // CFBundleCopyResourceURL
        {"url-append", 9},     // CFURLCreateCopyAppendingPathComponent
        {"url-frombytes", 6},  // CFURLCreateFromFileSystemRepresentation
        {"url-fsr", 8},        // CFURLGetFileSystemRepresentation
    };
    std::map<std::string, std::size_t> found;
    std::size_t tested = 0;
    for (const json& vector : VectorFile("cfbundle")["cases"]) {
        const std::string family = vector["family"];
        leftOut.contains(family) ? ++found[family] : ++tested;
    }
    EXPECT_EQ(found, leftOut);
    EXPECT_EQ(tested, 94U + 24U + 5U + 51U + 22U) << "strings, info, layout, URLs, streams";
}

}  // namespace
