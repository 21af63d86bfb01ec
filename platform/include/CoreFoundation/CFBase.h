// Base types of Core Foundation, with the sizes and signedness they have on a 64-bit system.
//
// Foundation includes Core Foundation, never the other way round.
#pragma once

#include <sys/types.h>

#include <cstdint>

using Boolean = unsigned char;
using UInt8 = unsigned char;
using SInt8 = signed char;
using UInt16 = unsigned short;
using SInt16 = short;
using UInt32 = unsigned int;
using SInt32 = int;
using UInt64 = std::uint64_t;
using SInt64 = std::int64_t;
using Byte = UInt8;
using UniChar = unsigned short;
using UniCharCount = unsigned long;
using FourCharCode = UInt32;
using OSType = FourCharCode;
using OSStatus = SInt32;
using OSErr = SInt16;
using ItemCount = unsigned long;
using ByteCount = unsigned long;
using StringPtr = unsigned char*;
using ConstStr255Param = const unsigned char*;

using CFIndex = long;
using CFTypeID = unsigned long;
using CFOptionFlags = unsigned long;
using CFHashCode = unsigned long;
using CFTimeInterval = double;
using CFAbsoluteTime = double;  // seconds since 2001-01-01 00:00:00 UTC
using CFTypeRef = const void*;
using CFPropertyListRef = CFTypeRef;

using CFAllocatorRef = const struct __CFAllocator*;
using CFNullRef = const struct __CFNull*;
using CFStringRef = const struct __CFString*;
using CFMutableStringRef = struct __CFString*;
using CFDataRef = const struct __CFData*;
using CFMutableDataRef = struct __CFData*;
using CFArrayRef = const struct __CFArray*;
using CFMutableArrayRef = struct __CFArray*;
using CFDictionaryRef = const struct __CFDictionary*;
using CFMutableDictionaryRef = struct __CFDictionary*;
using CFNumberRef = const struct __CFNumber*;
using CFBooleanRef = const struct __CFBoolean*;
using CFURLRef = const struct __CFURL*;
using CFDateRef = const struct __CFDate*;
using CFErrorRef = struct __CFError*;
using CFBundleRef = struct __CFBundle*;
using CFReadStreamRef = struct __CFReadStream*;

struct CFRange {
    CFIndex location;
    CFIndex length;
};

inline CFRange CFRangeMake(CFIndex location, CFIndex length) {
    return CFRange{location, length};
}

static const CFIndex kCFNotFound = -1;

enum CFComparisonResult : CFIndex {
    kCFCompareLessThan = -1,
    kCFCompareEqualTo = 0,
    kCFCompareGreaterThan = 1,
};

extern "C" {

extern const CFAllocatorRef kCFAllocatorDefault;  // null; the only allocator
extern const CFNullRef kCFNull;                   // immortal

// Null arguments are a programming error here as on macOS: the process stops.
CFTypeRef CFRetain(CFTypeRef cf);
void CFRelease(CFTypeRef cf);
CFIndex CFGetRetainCount(CFTypeRef cf);  // LONG_MAX for an immortal object
CFTypeID CFGetTypeID(CFTypeRef cf);
// Objects of different types are never equal: kCFBooleanTrue is not the number 1.
Boolean CFEqual(CFTypeRef cf1, CFTypeRef cf2);
CFHashCode CFHash(CFTypeRef cf);
CFStringRef CFCopyDescription(CFTypeRef cf);            // for people; null for null
CFStringRef CFCopyTypeIDDescription(CFTypeID type_id);  // such as "CFString"
CFTypeID CFNullGetTypeID(void);

}  // extern "C"
