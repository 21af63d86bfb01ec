#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFString.h>

#include "platform/CoreFoundation/Collections/CallbackDictionary.h"
#include "platform/CoreFoundation/Collections/ObjectCallbacks.h"
#include "platform/CoreFoundation/Runtime/CFRuntime.h"

using core_foundation::ReleaseObject;
using core_foundation::Require;
using core_foundation::RetainObject;
using core_foundation::Stop;

@implementation NSDictionary (CFRuntime)
- (CFTypeID)cfTypeID {
    return CFDictionaryGetTypeID();
}
@end

namespace {

const void* CopyString(CFAllocatorRef allocator, const void* value) {
    return CFStringCreateCopy(allocator, static_cast<CFStringRef>(value));
}

// Null for a dictionary that Foundation created.
CallbackDictionary* Ours(CFTypeRef dictionary, const char* function) {
    id object = Require(dictionary, function);
    return [object isKindOfClass:[CallbackDictionary class]] ? (CallbackDictionary*)object : nil;
}

void Set(CFMutableDictionaryRef dictionary, const void* key, const void* value, bool replacing,
         const char* function) {
    if (CallbackDictionary* ours = Ours(dictionary, function)) {
        [ours setValue:value forPointer:key replacing:replacing];
    } else if (replacing || [(NSDictionary*)dictionary objectForKey:(id)key] == nil) {
        [(NSMutableDictionary*)dictionary setObject:(id)value forKey:(id)key];
    }
}

}  // namespace

const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks = {
    0, RetainObject, ReleaseObject, CFCopyDescription, CFEqual, CFHash};
const CFDictionaryKeyCallBacks kCFCopyStringDictionaryKeyCallBacks = {
    0, CopyString, ReleaseObject, CFCopyDescription, CFEqual, CFHash};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks = {0, RetainObject, ReleaseObject,
                                                                    CFCopyDescription, CFEqual};

CFTypeID CFDictionaryGetTypeID(void) {
    static const CFTypeID type = core_foundation::RegisterType("CFDictionary");
    return type;
}

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef allocator, const void** keys, const void** values,
                                   CFIndex numValues, const CFDictionaryKeyCallBacks* keyCallBacks,
                                   const CFDictionaryValueCallBacks* valueCallBacks) {
    if (numValues < 0 || (numValues > 0 && (keys == nullptr || values == nullptr))) {
        Stop(__func__, "no keys or values");
    }
    CFMutableDictionaryRef dictionary =
        CFDictionaryCreateMutable(allocator, numValues, keyCallBacks, valueCallBacks);
    for (CFIndex index = 0; index < numValues; ++index) {
        CFDictionaryAddValue(dictionary, keys[index], values[index]);
    }
    return dictionary;
}

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef, CFIndex capacity,
                                                 const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks) {
    if (capacity < 0) {
        Stop(__func__, "negative capacity");
    }
    return (CFMutableDictionaryRef)[[CallbackDictionary alloc] initWithKeyCallBacks:keyCallBacks
                                                                     valueCallBacks:valueCallBacks];
}

CFIndex CFDictionaryGetCount(CFDictionaryRef theDict) {
    return static_cast<CFIndex>([Require<NSDictionary>(theDict, __func__) count]);
}

const void* CFDictionaryGetValue(CFDictionaryRef theDict, const void* key) {
    const void* value = nullptr;
    CFDictionaryGetValueIfPresent(theDict, key, &value);
    return value;
}

Boolean CFDictionaryGetValueIfPresent(CFDictionaryRef theDict, const void* key,
                                      const void** value) {
    if (CallbackDictionary* ours = Ours(theDict, __func__)) {
        return [ours getValue:value forKey:key];
    }
    id object = [(NSDictionary*)theDict objectForKey:(id)key];
    if (object != nil && value != nullptr) {
        *value = object;
    }
    return object != nil;
}

void CFDictionaryGetKeysAndValues(CFDictionaryRef theDict, const void** keys, const void** values) {
    if (CallbackDictionary* ours = Ours(theDict, __func__)) {
        [ours getKeys:keys values:values];
        return;
    }
    for (id key in (NSDictionary*)theDict) {
        if (keys != nullptr) {
            *keys++ = key;
        }
        if (values != nullptr) {
            *values++ = [(NSDictionary*)theDict objectForKey:key];
        }
    }
}

void CFDictionaryAddValue(CFMutableDictionaryRef theDict, const void* key, const void* value) {
    Set(theDict, key, value, false, __func__);
}

void CFDictionarySetValue(CFMutableDictionaryRef theDict, const void* key, const void* value) {
    Set(theDict, key, value, true, __func__);
}

void CFDictionaryRemoveValue(CFMutableDictionaryRef theDict, const void* key) {
    if (CallbackDictionary* ours = Ours(theDict, __func__)) {
        [ours removeValueForPointer:key];
    } else {
        [(NSMutableDictionary*)theDict removeObjectForKey:(id)key];
    }
}

void CFDictionaryRemoveAllValues(CFMutableDictionaryRef theDict) {
    [Require<NSMutableDictionary>(theDict, __func__) removeAllObjects];
}
