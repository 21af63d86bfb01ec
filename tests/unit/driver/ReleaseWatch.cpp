#include "tests/unit/driver/ReleaseWatch.h"

#include <dlfcn.h>

#include <utility>

namespace {

std::function<void(CFTypeRef)>& Watcher() {
    static std::function<void(CFTypeRef)> watcher;
    return watcher;
}

}  // namespace

ReleaseWatch::ReleaseWatch(std::function<void(CFTypeRef)> seen) {
    Watcher() = std::move(seen);
}

ReleaseWatch::~ReleaseWatch() {
    Watcher() = nullptr;
}

extern "C" void CFRelease(CFTypeRef object) {
    static const auto next = reinterpret_cast<decltype(&CFRelease)>(dlsym(RTLD_NEXT, "CFRelease"));
    if (Watcher()) {
        Watcher()(object);
    }
    next(object);
}
