// What the platform layer's own files need besides the public headers: type ids, and the failure
// for programming errors.
//
// A class that is a separate Core Foundation type registers its id once and returns it:
//
//     CFTypeID AXUIElementGetTypeID(void) {
//         static const CFTypeID type = core_foundation::RegisterType("AXUIElement");
//         return type;
//     }
//     @implementation Element
//     - (CFTypeID)cfTypeID { return AXUIElementGetTypeID(); }
//     @end
#pragma once

#include <CoreFoundation/CFBase.h>

#ifdef __OBJC__
#import <Foundation/Foundation.h>
#endif

namespace core_foundation {

// A new type id. The name is what CFCopyTypeIDDescription returns; it must be permanent. Any
// thread.
CFTypeID RegisterType(const char* name);

// The name of a registered type; null for any other number.
const char* TypeName(CFTypeID type);

// Writes "function: problem" to stderr and stops the process, as a failed assertion of the
// framework does on macOS.
[[noreturn]] void Stop(const char* function, const char* problem);

#ifdef __OBJC__
// The Foundation object behind a reference, which must not be null.
template <typename Object = NSObject>
Object* Require(CFTypeRef reference, const char* function) {
    if (reference == nullptr) {
        Stop(function, "null argument");
    }
    return (Object*)reference;
}
#endif

}  // namespace core_foundation

#ifdef __OBJC__
@interface NSObject (CFRuntime)
// The id of this object's Core Foundation type. Foundation objects of types that are not the
// layer's share the id "CFType".
- (CFTypeID)cfTypeID;
@end
#endif
