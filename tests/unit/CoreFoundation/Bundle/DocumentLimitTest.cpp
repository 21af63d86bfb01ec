// The longest document that a stream may hold.
#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include "VEKCommon/OwnedReference.h"
#include "platform/CoreFoundation/PropertyList/PropertyListReader.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/unit/CoreFoundation/PropertyList/TaggedTree.h"

namespace {

// The code of the error with which a document of that many bytes is refused.
CFIndex ErrorOfDocument(std::uintmax_t size) {
    const test_support::TemporaryFolder folder;
    const auto file = folder.Write("document", "(a, b)");
    std::filesystem::resize_file(file, size);
    const OwnedReference<CFStringRef> path(
        CFStringCreateWithCString(nullptr, file.c_str(), kCFStringEncodingUTF8));
    const OwnedReference<CFURLRef> url(
        CFURLCreateWithFileSystemPath(nullptr, path.get(), kCFURLPOSIXPathStyle, false));
    const OwnedReference<CFReadStreamRef> stream(CFReadStreamCreateWithFile(nullptr, url.get()));
    EXPECT_TRUE(CFReadStreamOpen(stream.get()));
    CFErrorRef error = nullptr;
    EXPECT_EQ(CFPropertyListCreateWithStream(nullptr, stream.get(), 0, kCFPropertyListImmutable,
                                             nullptr, &error),
              nullptr);
    const OwnedReference<CFErrorRef> owned(error);
    return TaggedError(error)["code"];
}

TEST(DocumentLimit, IsThatOfTheStreamAndNotOfTheReader) {
    EXPECT_EQ(ErrorOfDocument(property_list::kLongestDocument), kCFPropertyListReadCorruptError);
    EXPECT_EQ(ErrorOfDocument(property_list::kLongestDocument + 1), kCFPropertyListReadStreamError);
}

}  // namespace
