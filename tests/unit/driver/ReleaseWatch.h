// The releases of Core Foundation objects, as they happen: CFRelease of this program takes the
// place of the framework's and passes each call on.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <functional>

class ReleaseWatch {
  public:
    // `seen` is called before each release while this object lives. One at a time.
    explicit ReleaseWatch(std::function<void(CFTypeRef)> seen);
    ~ReleaseWatch();
    ReleaseWatch(const ReleaseWatch&) = delete;
    ReleaseWatch& operator=(const ReleaseWatch&) = delete;
};
