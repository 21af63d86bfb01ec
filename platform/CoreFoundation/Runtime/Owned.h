// One reference to a Core Foundation object, released at the end of its scope: for the layer's own
// code, which includes nothing of the driver's.
#pragma once

#include <CoreFoundation/CFBase.h>

#include <memory>
#include <type_traits>

namespace core_foundation {

struct OwnedRelease {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};

// Takes over what a Create or Copy function returned, which may be null.
template <typename Reference>
using Owned = std::unique_ptr<std::remove_pointer_t<Reference>, OwnedRelease>;

}  // namespace core_foundation
