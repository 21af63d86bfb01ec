#include "tests/unit/events/QuartzCalls.h"

#include <ApplicationServices/ApplicationServices.h>
#include <dlfcn.h>

namespace {

template <typename Function>
Function* Next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

std::string Source(CGEventSourceRef source) {
    return source == nullptr ? "null" : "source";
}

}  // namespace

std::vector<std::string>& QuartzCalls() {
    static std::vector<std::string> calls;
    return calls;
}

extern "C" {

CGEventRef CGEventCreate(CGEventSourceRef source) {
    QuartzCalls().push_back("CGEventCreate(" + Source(source) + ")");
    return Next<decltype(CGEventCreate)>("CGEventCreate")(source);
}

CGEventSourceRef CGEventSourceCreate(CGEventSourceStateID state) {
    QuartzCalls().push_back("CGEventSourceCreate(" + std::to_string(state) + ")");
    return Next<decltype(CGEventSourceCreate)>("CGEventSourceCreate")(state);
}

CGEventRef CGEventCreateMouseEvent(CGEventSourceRef source, CGEventType type, CGPoint where,
                                   CGMouseButton button) {
    QuartzCalls().push_back("CGEventCreateMouseEvent(" + Source(source) + ", " +
                            std::to_string(type) + ", " + std::to_string(button) + ")");
    return Next<decltype(CGEventCreateMouseEvent)>("CGEventCreateMouseEvent")(source, type, where,
                                                                              button);
}

}  // extern "C"
