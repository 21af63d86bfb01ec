// Ownership of Core Foundation objects.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <type_traits>

namespace krt9ctl {

struct Releaser {
    void operator()(const void* object) const { CFRelease(object); }
};

// Owns one reference to an object of a CF...Ref type; adopts what Create and Copy functions return.
template <typename Ref>
using Reference = std::unique_ptr<std::remove_pointer_t<Ref>, Releaser>;

}  // namespace krt9ctl
