// The binary form of a property list.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "platform/CoreFoundation/PropertyList/ObjectMaker.h"

namespace property_list {

// A binary document whose trailer agrees with its length and whose offset table stays within its
// objects. Nothing else about it has been checked.
class BinaryDocument {
  public:
    // Nothing when the bytes are not such a document.
    static std::optional<BinaryDocument> Open(std::span<const std::uint8_t> bytes);

    // Empty when the top object, or any object it leads to, is malformed or contains itself.
    Object Read(const ObjectMaker& make) const;

  private:
    friend class BinaryReader;

    std::span<const std::uint8_t> objects_;      // from the document's first byte on
    std::span<const std::uint8_t> offsetTable_;  // one entry for every object
    std::uint64_t objectCount_ = 0;
    std::uint64_t topObject_ = 0;
    std::size_t offsetSize_ = 0;     // bytes
    std::size_t referenceSize_ = 0;  // bytes
};

}  // namespace property_list
