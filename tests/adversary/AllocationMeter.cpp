#include "tests/adversary/AllocationMeter.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>

#if __has_feature(address_sanitizer)
#include <sanitizer/allocator_interface.h>
#else
#include <malloc.h>
#endif

namespace adversary {

namespace {

// Constant-initialised: the first allocations come before any constructor has run.
struct Counters {
    std::atomic<bool> active = false;
    std::atomic<std::size_t> count = 0;
    std::atomic<std::size_t> largest = 0;
    std::atomic<std::size_t> total = 0;
    std::atomic<long> live = 0;
    std::atomic<long> peak = 0;
};
Counters counters;

template <typename Number>
void Raise(std::atomic<Number>& highest, Number value) {
    Number seen = highest;
    while (value > seen && !highest.compare_exchange_weak(seen, value)) {
    }
}

void Allocated(std::size_t size) {
    if (!counters.active) {
        return;
    }
    ++counters.count;
    counters.total += size;
    Raise(counters.largest, size);
    Raise(counters.peak, counters.live += static_cast<long>(size));
}

void Freed(std::size_t size) {
    if (counters.active) {
        counters.live -= static_cast<long>(size);
    }
}

}  // namespace

AllocationMeter::AllocationMeter() {
    counters.count = 0;
    counters.largest = 0;
    counters.total = 0;
    counters.live = 0;
    counters.peak = 0;
    counters.active = true;
}

AllocationMeter::~AllocationMeter() {
    counters.active = false;
}

Allocations AllocationMeter::SoFar() const {
    return {counters.count, counters.largest, counters.total,
            static_cast<std::size_t>(counters.peak), counters.live};
}

#if __has_feature(address_sanitizer)

namespace {

// The allocator is the sanitizer's own, which tells what it does.
[[maybe_unused]] const int kHooksInstalled = __sanitizer_install_malloc_and_free_hooks(
    [](const volatile void*, std::size_t size) { Allocated(size); },
    [](const volatile void* block) {
        const void* freed = const_cast<const void*>(block);
        if (__sanitizer_get_ownership(freed) != 0) {
            Freed(__sanitizer_get_allocated_size(freed));
        }
    });

}  // namespace

#else

// The size that was asked for is not kept by the C library: what a block holds is counted.
void* Counted(void* block) {
    if (block != nullptr) {
        Allocated(malloc_usable_size(block));
    }
    return block;
}

void Uncounted(void* block) {
    if (block != nullptr) {
        Freed(malloc_usable_size(block));
    }
}

#endif

}  // namespace adversary

#if !__has_feature(address_sanitizer)

// The program's own allocation functions go before the C library's, for every library it loads.
extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);

void* malloc(std::size_t size) {
    return adversary::Counted(__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size) {
    return adversary::Counted(__libc_calloc(count, size));
}

void* realloc(void* block, std::size_t size) {
    adversary::Uncounted(block);
    return adversary::Counted(__libc_realloc(block, size));
}

void* memalign(std::size_t alignment, std::size_t size) {
    return adversary::Counted(__libc_memalign(alignment, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
    *block = memalign(alignment, size);
    return *block != nullptr ? 0 : ENOMEM;
}

void free(void* block) {
    adversary::Uncounted(block);
    __libc_free(block);
}

}  // extern "C"

#endif
