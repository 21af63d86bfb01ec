#include <CoreFoundation/CFArray.h>

#include "platform/CoreFoundation/Collections/CallbackArray.h"
#include "platform/CoreFoundation/Collections/ObjectCallbacks.h"
#include "platform/CoreFoundation/Runtime/CFRuntime.h"

using core_foundation::ReleaseObject;
using core_foundation::Require;
using core_foundation::RetainObject;
using core_foundation::Stop;

@implementation NSArray (CFRuntime)
- (CFTypeID)cfTypeID {
    return CFArrayGetTypeID();
}
@end

namespace {

// The functions of kCFTypeArrayCallBacks.
CallbackArray* NewArray(const void* const* values, CFIndex count,
                        const CFArrayCallBacks* callBacks) {
    return [[CallbackArray alloc] initWithValues:values
                                           count:static_cast<NSUInteger>(count)
                                       callBacks:callBacks];
}

}  // namespace

const CFArrayCallBacks kCFTypeArrayCallBacks = {0, RetainObject, ReleaseObject, CFCopyDescription,
                                                CFEqual};

CFTypeID CFArrayGetTypeID(void) {
    static const CFTypeID type = core_foundation::RegisterType("CFArray");
    return type;
}

CFArrayRef CFArrayCreate(CFAllocatorRef, const void** values, CFIndex numValues,
                         const CFArrayCallBacks* callBacks) {
    if (numValues < 0 || (values == nullptr && numValues > 0)) {
        Stop(__func__, "no values");
    }
    return (CFArrayRef)NewArray(values, numValues, callBacks);
}

CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef, CFIndex capacity,
                                       const CFArrayCallBacks* callBacks) {
    if (capacity < 0) {
        Stop(__func__, "negative capacity");
    }
    return (CFMutableArrayRef)NewArray(nullptr, 0, callBacks);
}

CFIndex CFArrayGetCount(CFArrayRef theArray) {
    return static_cast<CFIndex>([Require<NSArray>(theArray, __func__) count]);
}

const void* CFArrayGetValueAtIndex(CFArrayRef theArray, CFIndex idx) {
    if (idx < 0 || idx >= CFArrayGetCount(theArray)) {
        Stop(__func__, "index outside the array");
    }
    return [(NSArray*)theArray objectAtIndex:static_cast<NSUInteger>(idx)];
}

void CFArrayAppendValue(CFMutableArrayRef theArray, const void* value) {
    [Require<NSMutableArray>(theArray, __func__) addObject:(id)value];
}
