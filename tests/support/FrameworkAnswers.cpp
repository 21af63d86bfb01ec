#include "tests/support/FrameworkAnswers.h"

#include <ApplicationServices/ApplicationServices.h>
#include <dlfcn.h>

namespace {

template <typename Function>
Function* Next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

FrameworkAnswers& FrameworkAnswers::Current() {
    static FrameworkAnswers current;
    return current;
}

extern "C" {

AXUIElementRef AXUIElementCreateApplication(pid_t process) {
    if (!FrameworkAnswers::Current().applicationElements) {
        return nullptr;
    }
    return Next<decltype(AXUIElementCreateApplication)>("AXUIElementCreateApplication")(process);
}

CFStringEncoding CFStringGetSystemEncoding(void) {
    if (const auto& encoding = FrameworkAnswers::Current().systemEncoding) {
        return *encoding;
    }
    return Next<decltype(CFStringGetSystemEncoding)>("CFStringGetSystemEncoding")();
}

}  // extern "C"
