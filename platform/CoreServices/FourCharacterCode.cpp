#include <CoreServices/CoreServices.h>

// The system's documentation does not define malformed texts; 0 means "no code" throughout it.
OSType UTGetOSTypeFromString(CFStringRef inString) {
    constexpr CFIndex kLength = 4;
    UInt8 characters[kLength] = {};
    CFIndex used = 0;
    if (inString == nullptr || CFStringGetLength(inString) != kLength ||
        CFStringGetBytes(inString, CFRangeMake(0, kLength), kCFStringEncodingMacRoman, 0, false,
                         characters, kLength, &used) != kLength ||
        used != kLength) {
        return 0;
    }
    return OSType{characters[0]} << 24 | OSType{characters[1]} << 16 | OSType{characters[2]} << 8 |
           OSType{characters[3]};
}
