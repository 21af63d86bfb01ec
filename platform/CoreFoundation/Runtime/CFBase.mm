#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFString.h>

#include <climits>

#include "platform/CoreFoundation/Numbers/NumberValue.h"
#include "platform/CoreFoundation/Runtime/CFRuntime.h"
#include "platform/CoreFoundation/Strings/StringUnits.h"

// Every Core Foundation object of this layer is a Foundation object, so that the two are bridged
// without conversion.

using core_foundation::Require;

@implementation NSObject (CFRuntime)
- (CFTypeID)cfTypeID {
    static const CFTypeID type = core_foundation::RegisterType("CFType");
    return type;
}
@end

@implementation NSNull (CFRuntime)
- (CFTypeID)cfTypeID {
    return CFNullGetTypeID();
}
@end

CFTypeID CFNullGetTypeID(void) {
    static const CFTypeID type = core_foundation::RegisterType("CFNull");
    return type;
}

CFTypeRef CFRetain(CFTypeRef cf) {
    return (CFTypeRef)[Require(cf, __func__) retain];
}

void CFRelease(CFTypeRef cf) {
    [Require(cf, __func__) release];
}

CFIndex CFGetRetainCount(CFTypeRef cf) {
    const NSUInteger count = [Require(cf, __func__) retainCount];
    return count > LONG_MAX ? LONG_MAX : (CFIndex)count;
}

CFTypeID CFGetTypeID(CFTypeRef cf) {
    return [Require(cf, __func__) cfTypeID];
}

Boolean CFEqual(CFTypeRef cf1, CFTypeRef cf2) {
    NSObject* first = Require(cf1, __func__);
    NSObject* second = Require(cf2, __func__);
    if (first == second) {
        return true;
    }
    const CFTypeID type = [first cfTypeID];
    if (type != [second cfTypeID]) {
        return false;
    }
    if (type == CFStringGetTypeID()) {
        return core_foundation::SameUnits((NSString*)first, (NSString*)second);
    }
    if (type == CFNumberGetTypeID()) {
        return core_foundation::SameNumber(core_foundation::ValueOf((NSNumber*)first),
                                           core_foundation::ValueOf((NSNumber*)second));
    }
    return [first isEqual:second];
}

CFHashCode CFHash(CFTypeRef cf) {
    return [Require(cf, __func__) hash];
}

CFStringRef CFCopyDescription(CFTypeRef cf) {
    @autoreleasepool {
        return cf == nullptr ? nullptr : (CFStringRef)[[(id)cf description] copy];
    }
}

CFStringRef CFCopyTypeIDDescription(CFTypeID type_id) {
    const char* name = core_foundation::TypeName(type_id);
    return name == nullptr
               ? nullptr
               : CFStringCreateWithCString(kCFAllocatorDefault, name, kCFStringEncodingASCII);
}
