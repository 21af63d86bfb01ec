#include <CoreFoundation/CFData.h>

#include <algorithm>

#include "platform/CoreFoundation/Runtime/CFRuntime.h"

using core_foundation::Require;
using core_foundation::Stop;

@implementation NSData (CFRuntime)
- (CFTypeID)cfTypeID {
    return CFDataGetTypeID();
}
@end

CFTypeID CFDataGetTypeID(void) {
    static const CFTypeID type = core_foundation::RegisterType("CFData");
    return type;
}

CFDataRef CFDataCreate(CFAllocatorRef, const UInt8* bytes, CFIndex length) {
    if (length < 0 || (bytes == nullptr && length > 0)) {
        Stop(__func__, "no bytes");
    }
    return (CFDataRef)[[NSData alloc] initWithBytes:bytes length:static_cast<NSUInteger>(length)];
}

CFMutableDataRef CFDataCreateMutable(CFAllocatorRef, CFIndex capacity) {
    if (capacity < 0) {
        Stop(__func__, "negative capacity");
    }
    return (CFMutableDataRef)[[NSMutableData alloc] initWithCapacity:0];
}

void CFDataAppendBytes(CFMutableDataRef theData, const UInt8* bytes, CFIndex length) {
    if (length < 0) {
        Stop(__func__, "negative length");
    }
    [Require<NSMutableData>(theData, __func__) appendBytes:bytes
                                                    length:static_cast<NSUInteger>(length)];
}

CFIndex CFDataGetLength(CFDataRef theData) {
    return static_cast<CFIndex>([Require<NSData>(theData, __func__) length]);
}

const UInt8* CFDataGetBytePtr(CFDataRef theData) {
    return static_cast<const UInt8*>([Require<NSData>(theData, __func__) bytes]);
}

void CFDataGetBytes(CFDataRef theData, CFRange range, UInt8* buffer) {
    const CFIndex length = CFDataGetLength(theData);
    if (range.location < 0 || range.length < 0 || range.location > length ||
        range.length > length - range.location) {
        Stop(__func__, "range outside the data");
    }
    std::copy_n(CFDataGetBytePtr(theData) + range.location, range.length, buffer);
}
