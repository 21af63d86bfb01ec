// Property lists of any format, from bytes.
#pragma once

#include <CoreFoundation/CFPropertyList.h>

#include <cstdint>
#include <span>

#include "ObjectMaker.h"

namespace property_list {

struct Document {
    Object root;                  // empty when the bytes are no property list
    CFPropertyListFormat format;  // meaningless without a root
};

// Whatever the bytes are, it takes time and memory in proportion to their number.
Document ReadPropertyList(std::span<const std::uint8_t> bytes, CFOptionFlags options);

}  // namespace property_list
