#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <type_traits>

// An object that a Create or Copy function returned; may be null.
struct Releaser {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};

template <typename Reference>
using Owned = std::unique_ptr<std::remove_pointer_t<Reference>, Releaser>;
