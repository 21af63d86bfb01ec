// For code that deliberately leaves objects over, or that a test stops half-way: what is allocated
// while one of these lives is not reported by the leak sanitizer.
#pragma once

// Of the sanitizer's run-time library; absent from other builds.
extern "C" {
void __lsan_disable() __attribute__((weak));
void __lsan_enable() __attribute__((weak));
}

namespace test_support {

class LeakAllowance {
  public:
    LeakAllowance() {
        if (__lsan_disable != nullptr) {
            __lsan_disable();
        }
    }
    ~LeakAllowance() {
        if (__lsan_enable != nullptr) {
            __lsan_enable();
        }
    }
    LeakAllowance(const LeakAllowance&) = delete;
    LeakAllowance& operator=(const LeakAllowance&) = delete;
};

}  // namespace test_support
