// The constant objects. They are created with the runtime's C functions, from classes of the
// Foundation library alone: that library is complete before this one's first initialiser runs,
// whereas the selectors of this library's own Objective-C files may not be registered yet.
#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFNumber.h>
#include <objc/message.h>
#include <objc/runtime.h>

namespace {

template <typename... Arguments>
const void* ClassMessage(const char* className, const char* selectorName, Arguments... arguments) {
    const id receiver = reinterpret_cast<id>(objc_getClass(className));
    const SEL selector = sel_registerName(selectorName);
    using Method = id (*)(id, SEL, Arguments...);
    const auto method = reinterpret_cast<Method>(objc_msg_lookup(receiver, selector));
    return method(receiver, selector, arguments...);
}

}  // namespace

extern "C" {

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFNullRef kCFNull = static_cast<CFNullRef>(ClassMessage("NSNull", "null"));
const CFBooleanRef kCFBooleanTrue =
    static_cast<CFBooleanRef>(ClassMessage("NSNumber", "numberWithBool:", BOOL{YES}));
const CFBooleanRef kCFBooleanFalse =
    static_cast<CFBooleanRef>(ClassMessage("NSNumber", "numberWithBool:", BOOL{NO}));

}  // extern "C"
