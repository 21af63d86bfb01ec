// Reading property lists.
#pragma once

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFStream.h>

using CFPropertyListMutabilityOptions = CFOptionFlags;
enum : CFOptionFlags {
    kCFPropertyListImmutable = 0,
    kCFPropertyListMutableContainers = 1,
    kCFPropertyListMutableContainersAndLeaves = 2,
};

enum CFPropertyListFormat : CFIndex {
    kCFPropertyListOpenStepFormat = 1,
    kCFPropertyListXMLFormat_v1_0 = 100,
    kCFPropertyListBinaryFormat_v1_0 = 200,
};

// Codes in the domain "NSCocoaErrorDomain".
enum : CFIndex {
    kCFPropertyListReadCorruptError = 3840,
    kCFPropertyListReadStreamError = 3842,
};

extern "C" {

// Both return a property list that the caller releases, or null. `format` and `error` may be null:
// the format is written on success, an error that the caller releases on failure.
CFPropertyListRef CFPropertyListCreateWithData(CFAllocatorRef allocator, CFDataRef data,
                                               CFOptionFlags options, CFPropertyListFormat* format,
                                               CFErrorRef* error);

// The stream must be open. Reads `streamLength` bytes, or with 0 all that are left; of fewer than
// six bytes it creates no property list.
CFPropertyListRef CFPropertyListCreateWithStream(CFAllocatorRef allocator, CFReadStreamRef stream,
                                                 CFIndex streamLength, CFOptionFlags options,
                                                 CFPropertyListFormat* format, CFErrorRef* error);

}  // extern "C"
