// Allocations are remembered with stacks that are found by frame pointers: twice as many inputs per
// second. What the Objective-C runtime keeps while classes register cannot be told from a leak that
// way, so nothing that is allocated before the first input counts as one.
//
// A report's stack ends where it enters a library without frame pointers; the reproducer shows all
// of it when it runs with ASAN_OPTIONS=fast_unwind_on_malloc=0.
#include "fuzz/StartUp.h"

#include "platform/Variants/Variants.h"

extern "C" {

void __lsan_disable() __attribute__((weak));
void __lsan_enable() __attribute__((weak));

const char* __asan_default_options() {
    return "fast_unwind_on_malloc=1";
}

const char* __lsan_default_options() {
    return "print_suppressions=0";
}

// What the Objective-C runtime allocates for itself when a class is used for the first time.
// Objects are not allocated by that function.
const char* __lsan_default_suppressions() {
    return "leak:objc_malloc\n";
}

}  // extern "C"

namespace {

void BeginStart() {
    if (__lsan_disable != nullptr) {
        __lsan_disable();
    }
}

// Called before the constructors of the libraries are.
__attribute__((section(".preinit_array"), used)) void (*const kBeginStart)() = BeginStart;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // Each input writes its bundles where those of the last one lay.
    static const platform_testing::UnderVariant fresh(platform_testing::Variant::freshBundleInfo);
    // With the usual limit of 5 messages no socket would ever be full.
    static const platform_testing::UnderVariant longQueue(platform_testing::Variant::longPortQueue);
    fuzz::PrepareTarget();
    if (__lsan_enable != nullptr) {
        __lsan_enable();
    }
    return 0;
}
