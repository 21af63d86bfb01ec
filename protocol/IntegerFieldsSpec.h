// The base of the records that consist of 32-bit fields only.
#pragma once

#include <cstddef>
#include <optional>
#include <type_traits>

#include "protocol/BoundedBytes.h"
#include "protocol/MessageSpec.h"

template <unsigned int fieldCount>
class SIntegerFieldsSpec : public SMessageSpec {
  public:
    static constexpr unsigned int kSmallestSize = 4 * fieldCount;  // bytes, and also the largest

    static bool SkipOver(BoundedBytes& body) { return body.Skip(kSmallestSize); }

    static std::optional<std::size_t> CompleteSize(const unsigned char* bytes, std::size_t length) {
        return CompleteSizeOf<SIntegerFieldsSpec>(bytes, length);
    }

  protected:
    SIntegerFieldsSpec() : SMessageSpec(kSmallestSize) {}

    // Signed fields travel as their two's-complement bit pattern.
    template <class... Fields>
    unsigned char* SerializeFields(Fields... fields) {
        static_assert(sizeof...(Fields) == fieldCount);
        unsigned char* end = bytes_;
        ((end += SerializeField(static_cast<unsigned int>(fields), end)), ...);
        return bytes_;
    }

    template <class... Fields>
    static void DeserializeFields(const unsigned char* src, Fields&... fields) {
        static_assert(sizeof...(Fields) == fieldCount);
        const auto next = [&src](auto& field) {
            unsigned int value = 0;
            src += DeserializeField(src, &value);
            field = static_cast<std::remove_reference_t<decltype(field)>>(value);
        };
        (next(fields), ...);
    }

  private:
    unsigned char bytes_[kSmallestSize] = {};
};
