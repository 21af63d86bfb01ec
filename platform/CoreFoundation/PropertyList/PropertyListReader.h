// Property lists of any format, from bytes.
#pragma once

#include <CoreFoundation/CFPropertyList.h>

#include <cstddef>
#include <cstdint>
#include <span>

#include "ObjectMaker.h"

namespace property_list {

// Bytes. No property list that anyone writes is longer; a device file would never end.
inline constexpr std::size_t kLongestDocument = std::size_t{32} << 20U;

struct Document {
    Object root;                  // empty when the bytes are no property list
    CFPropertyListFormat format;  // meaningless without a root
};

// Whatever the bytes are, it takes time and memory in proportion to their number.
Document ReadPropertyList(std::span<const std::uint8_t> bytes, CFOptionFlags options);

}  // namespace property_list
