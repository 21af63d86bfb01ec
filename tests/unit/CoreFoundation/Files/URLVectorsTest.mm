#include <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>
#include <gtest/gtest.h>

#include "tests/unit/CoreFoundation/PropertyList/TaggedTree.h"
#include "tests/unit/CoreFoundation/ReferenceVectors.h"

namespace {

using nlohmann::json;

const KnownDifferences kKnownDifferences{};

class URLVector : public ::testing::TestWithParam<json> {};

// The URL's text and, of an absolute path, the path it names: all that reading a file needs. The
// other results are those of accessors that the layer does not have.
TEST_P(URLVector, NamesThePathAsMeasured) {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    const json& input = GetParam()["input"];
    const json& result = GetParam()["result"];
    const std::string path = input["path"];
    const CFURLRef url = CFURLCreateWithFileSystemPath(
        kCFAllocatorDefault, (CFStringRef)[NSString stringWithUTF8String:path.c_str()],
        kCFURLPOSIXPathStyle, input["is_directory"].get<bool>());
    json actual{{"created", url != nullptr}};
    json expected{{"created", result["created"]}};
    if (url != nullptr) {
        actual["url_string"] = [[(NSURL*)url relativeString] UTF8String];
        expected["url_string"] = result["url_string"];
        if (path.starts_with('/')) {
            actual["posix_path"] = [[(NSURL*)url path] UTF8String];
            expected["posix_path"] = result["posix_path"];
        }
        CFRelease(url);
    }
    ExpectVector(GetParam(), actual, expected, kKnownDifferences);
    [pool release];
}

INSTANTIATE_TEST_SUITE_P(Reference, URLVector,
                         ::testing::ValuesIn(Vectors("cfbundle",
                                                     [](const json& vector) {
                                                         return vector["family"] == "url-create";
                                                     })),
                         VectorName);

TEST(FileSystemPath, RelativeOneIsRelativeToTheCurrentFolder) {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    const CFURLRef url = CFURLCreateWithFileSystemPath(kCFAllocatorDefault, CFSTR("a b/c.plist"),
                                                       kCFURLPOSIXPathStyle, false);
    NSString* folder = [[NSFileManager defaultManager] currentDirectoryPath];
    EXPECT_STREQ([[(NSURL*)url path] UTF8String],
                 [[folder stringByAppendingPathComponent:@"a b/c.plist"] UTF8String]);
    CFRelease(url);
    [pool release];
}

TEST(FileSystemPath, RootIsASlashWhetherOrNotItIsCalledAFolder) {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    for (const bool isFolder : {false, true}) {
        const CFURLRef url = CFURLCreateWithFileSystemPath(kCFAllocatorDefault, CFSTR("/"),
                                                           kCFURLPOSIXPathStyle, isFolder);
        EXPECT_STREQ([[(NSURL*)url absoluteString] UTF8String], "file:///");
        CFRelease(url);
    }
    [pool release];
}

TEST(FileSystemPath, OtherStylesThanPosixAreNotUnderstood) {
    EXPECT_EQ(
        CFURLCreateWithFileSystemPath(kCFAllocatorDefault, CFSTR("a:b"), kCFURLHFSPathStyle, false),
        nullptr);
}

}  // namespace
