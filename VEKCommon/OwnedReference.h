// One reference to a Core Foundation object, released at the end of its scope.
//
//     OwnedReference<CFArrayRef> windows(CopyWindows());  // takes over the reference, or null
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <type_traits>

struct ReferenceRelease {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};

template <typename Reference>
using OwnedReference = std::unique_ptr<std::remove_pointer_t<Reference>, ReferenceRelease>;

// A further reference to an object that somebody else owns.
template <typename Reference>
OwnedReference<Reference> Retained(Reference object) {
    if (object != nullptr) {
        CFRetain(object);
    }
    return OwnedReference<Reference>(object);
}
