// What the platform layer's own files need beside the public headers: type ids, and the stop that a
// programming error meets.
//
// A class that is a Core Foundation type of its own registers its id once and answers it:
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

// A new type id. The name is what CFCopyTypeIDDescription answers; it must live for ever. Any
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
// The id of this object's Core Foundation type. Foundation objects that are none of the layer's
// types share the id "CFType".
- (CFTypeID)cfTypeID;
@end
#endif
