// The callbacks of collections whose keys and values are Core Foundation objects.
#pragma once

#include <CoreFoundation/CFBase.h>

namespace core_foundation {

inline const void* RetainObject(CFAllocatorRef, const void* value) {
    return CFRetain(value);
}

inline void ReleaseObject(CFAllocatorRef, const void* value) {
    CFRelease(value);
}

}  // namespace core_foundation
