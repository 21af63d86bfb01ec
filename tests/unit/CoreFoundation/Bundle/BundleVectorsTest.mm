#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/support/TemporaryFolder.h"
#include "tests/unit/CoreFoundation/PropertyList/TaggedTree.h"
#include "tests/unit/CoreFoundation/ReferenceVectors.h"

namespace {

using nlohmann::json;
using test_support::TemporaryFolder;

const KnownDifferences kKnownDifferences{
    {"strings-files-031",
     {{{"string", "given"}},
      "a value that is not a string came out as the text of its memory; here it counts as "
      "missing"}},
};

CFStringRef MakeString(const json& text) {
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

// The bundles of the vectors on disk, made as the driver makes them: Core Foundation's bundles are
// Foundation's here. The library they were measured with knows no list of the user's languages:
// that is the empty list here.
class BundleVector : public ::testing::TestWithParam<json> {
  protected:
    void SetUp() override {
        pool_ = [[NSAutoreleasePool alloc] init];
        setenv("KRT9_LANGUAGES", "", 1);
    }
    void TearDown() override {
        unsetenv("KRT9_LANGUAGES");
        [pool_ release];
    }

    NSBundle* Bundle() {
        const std::string name = GetParam()["input"]["bundle"];
        for (const auto& [file, content] : VectorFile("cfbundle")["bundles"][name].items()) {
            if (content.contains("directory")) {
                std::filesystem::create_directories(folder_.Path() / name / file);
            } else {
                folder_.Write(std::filesystem::path(name) / file, VectorBytes(content));
            }
        }
        NSString* path = [NSString stringWithUTF8String:(folder_.Path() / name).c_str()];
        return [NSBundle bundleWithURL:[NSURL fileURLWithPath:path isDirectory:YES]];
    }

    static json LocalizedString(NSBundle* bundle) {
        const json& input = GetParam()["input"];
        const CFStringRef key = MakeString(input["key"]);
        const CFStringRef value = MakeString(input["value"]);
        const CFStringRef table = MakeString(input["table"]);
        const CFStringRef string =
            CFBundleCopyLocalizedString((CFBundleRef)bundle, key, value, table);
        json answer = TaggedTree(string);
        Release({key, value, table, string});
        return answer;
    }

    TemporaryFolder folder_;

  private:
    NSAutoreleasePool* pool_ = nil;
};

class LocalizedStringVector : public BundleVector {};

TEST_P(LocalizedStringVector, IsChosenAsMeasured) {
    NSBundle* bundle = Bundle();
    const json actual = bundle == nil ? json{{"bundle", nullptr}} : LocalizedString(bundle);
    ExpectVector(GetParam(), actual, GetParam()["result"], kKnownDifferences);
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

// Asked of Foundation's bundle, by which the driver reads its own. Version number, package type and
// creator, and the number of entries are answers of functions that the layer does not have.
class InfoVector : public BundleVector {};

TEST_P(InfoVector, IdentifierAndValueAreAsMeasured) {
    NSBundle* bundle = Bundle();
    ASSERT_NE(bundle, nil);
    const std::string key = GetParam()["input"]["key"];
    NSString* identifier = [bundle bundleIdentifier];
    const id value =
        [bundle objectForInfoDictionaryKey:[NSString stringWithUTF8String:key.c_str()]];
    const json actual{
        {"identifier", identifier == nil ? json() : json(Utf8((CFStringRef)identifier))},
        {"value", TaggedTree(value)}};
    const json& result = GetParam()["result"];
    ExpectVector(GetParam(), actual,
                 {{"identifier", result["identifier"]}, {"value", result["value"]}},
                 kKnownDifferences);
}

INSTANTIATE_TEST_SUITE_P(Reference, InfoVector,
                         ::testing::ValuesIn(Vectors("cfbundle",
                                                     [](const json& vector) {
                                                         return vector["family"] == "info";
                                                     })),
                         VectorName);

class LayoutVector : public BundleVector {};

TEST_P(LayoutVector, BundleIsCreatedAsMeasured) {
    ExpectVector(GetParam(), Bundle() != nil, GetParam()["result"]["bundle_created"],
                 kKnownDifferences);
}

INSTANTIATE_TEST_SUITE_P(Reference, LayoutVector,
                         ::testing::ValuesIn(Vectors("cfbundle",
                                                     [](const json& vector) {
                                                         return vector["family"] == "layout";
                                                     })),
                         VectorName);

// The vectors of these families, with their numbers, are left out, because nothing calls their
// functions. Every other family is tested above or in the files on URLs and streams.
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
