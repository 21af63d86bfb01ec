// Bundles, URLs, streams and property lists are declared as on macOS: a difference fails to
// compile.
#include <CoreFoundation/CoreFoundation.h>

#include <type_traits>

static_assert(std::is_same_v<decltype(&CFBundleGetMainBundle), CFBundleRef (*)()>);
static_assert(std::is_same_v<decltype(&CFBundleCopyLocalizedString),
                             CFStringRef (*)(CFBundleRef, CFStringRef, CFStringRef, CFStringRef)>);

static_assert(std::is_same_v<decltype(&CFURLCreateWithFileSystemPath),
                             CFURLRef (*)(CFAllocatorRef, CFStringRef, CFURLPathStyle, Boolean)>);
static_assert(std::is_same_v<std::underlying_type_t<CFURLPathStyle>, CFIndex>);
static_assert(kCFURLPOSIXPathStyle == 0 && kCFURLHFSPathStyle == 1 && kCFURLWindowsPathStyle == 2);

static_assert(std::is_same_v<decltype(&CFReadStreamCreateWithFile),
                             CFReadStreamRef (*)(CFAllocatorRef, CFURLRef)>);
static_assert(std::is_same_v<decltype(&CFReadStreamOpen), Boolean (*)(CFReadStreamRef)>);
static_assert(std::is_same_v<decltype(&CFReadStreamClose), void (*)(CFReadStreamRef)>);
static_assert(
    std::is_same_v<decltype(&CFReadStreamRead), CFIndex (*)(CFReadStreamRef, UInt8*, CFIndex)>);
static_assert(
    std::is_same_v<decltype(&CFReadStreamGetStatus), CFStreamStatus (*)(CFReadStreamRef)>);
static_assert(std::is_same_v<decltype(&CFReadStreamCopyError), CFErrorRef (*)(CFReadStreamRef)>);
static_assert(std::is_same_v<std::underlying_type_t<CFStreamStatus>, CFIndex>);
static_assert(kCFStreamStatusNotOpen == 0 && kCFStreamStatusOpening == 1 &&
              kCFStreamStatusOpen == 2 && kCFStreamStatusReading == 3 &&
              kCFStreamStatusWriting == 4 && kCFStreamStatusAtEnd == 5 &&
              kCFStreamStatusClosed == 6 && kCFStreamStatusError == 7);

static_assert(std::is_same_v<decltype(&CFPropertyListCreateWithData),
                             CFPropertyListRef (*)(CFAllocatorRef, CFDataRef, CFOptionFlags,
                                                   CFPropertyListFormat*, CFErrorRef*)>);
static_assert(
    std::is_same_v<decltype(&CFPropertyListCreateWithStream),
                   CFPropertyListRef (*)(CFAllocatorRef, CFReadStreamRef, CFIndex, CFOptionFlags,
                                         CFPropertyListFormat*, CFErrorRef*)>);
static_assert(std::is_same_v<std::underlying_type_t<CFPropertyListFormat>, CFIndex>);
static_assert(kCFPropertyListOpenStepFormat == 1 && kCFPropertyListXMLFormat_v1_0 == 100 &&
              kCFPropertyListBinaryFormat_v1_0 == 200);
static_assert(kCFPropertyListImmutable == 0 && kCFPropertyListMutableContainers == 1 &&
              kCFPropertyListMutableContainersAndLeaves == 2);
