// Autorelease pools for C++ files.
#pragma once

#include "platform/Testing/Variants.h"

namespace core_foundation {

// Runs the call with a pool of its own. When an exception passes through, the pool is left to the
// one around it: the exception itself may lie in it.
void* PushAutoreleasePool();
void PopAutoreleasePool(void* pool);

template <typename Call>
void WithAutoreleasePool(Call call) {
    void* pool = PushAutoreleasePool();
    call();
    PopAutoreleasePool(pool);
}

// Calls out of a run loop. On macOS nobody drains a pool around a callout, or somebody does: a
// callee has to bring its own.
template <typename Call>
void CallOut(Call call) {
    if (platform_testing::IsOn(platform_testing::Variant::calloutPools)) {
        WithAutoreleasePool(call);
    } else {
        call();
    }
}

}  // namespace core_foundation
