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

AXError AXUIElementCopyAttributeValue(AXUIElementRef element, CFStringRef attribute,
                                      CFTypeRef* value) {
    if (!FrameworkAnswers::Current().attributeValues) {
        *value = nullptr;
        return kAXErrorSuccess;
    }
    return Next<decltype(AXUIElementCopyAttributeValue)>("AXUIElementCopyAttributeValue")(
        element, attribute, value);
}

CFStringEncoding CFStringGetSystemEncoding(void) {
    if (const auto& encoding = FrameworkAnswers::Current().systemEncoding) {
        return *encoding;
    }
    return Next<decltype(CFStringGetSystemEncoding)>("CFStringGetSystemEncoding")();
}

}  // extern "C"
