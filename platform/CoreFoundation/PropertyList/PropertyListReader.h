// Property lists of any format, from bytes.
#pragma once

#include <CoreFoundation/CFPropertyList.h>

#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/CoreFoundation/PropertyList/ObjectMaker.h"

namespace property_list {

// Bytes. Real property lists are shorter; a device file would never end.
inline constexpr std::size_t kLongestDocument = std::size_t{32} << 20U;

struct Document {
    Object root;                  // empty when the bytes are not a property list
    CFPropertyListFormat format;  // meaningless without a root
};

// Takes time and memory in proportion to the number of bytes, whatever they are.
Document ReadPropertyList(std::span<const std::uint8_t> bytes, CFOptionFlags options);

}  // namespace property_list
