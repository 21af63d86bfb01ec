// Autorelease pools for C++ files.
#pragma once

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

}  // namespace core_foundation
