// Walks over bytes of known length without reading beyond their end, and records why they do not
// hold a complete record.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>

#include "protocol/MessageSpec.h"

// What is wrong with a body, in numbers.
struct BodyFault {
    enum class Kind {
        kTooShort,      // at least `needed` bytes are required
        kNoTerminator,  // a text runs to the end of the body
        kTooLong,       // a name of `value` bytes or UTF-16 units, of which `needed` fit
        kCountBeyond,   // a count of `value` items, for which at least `needed` bytes are required
    };

    Kind kind = Kind::kTooShort;
    std::uint64_t value = 0;
    std::uint64_t needed = 0;
    const char* unit = nullptr;  // of a name that is too long
};

class BoundedBytes {
  public:
    BoundedBytes(const unsigned char* bytes, std::size_t length)
        : next_(bytes), left_(length), length_(length) {}

    std::size_t Left() const { return left_; }

    // Why the last call that failed, of those below, did so.
    const BodyFault& Fault() const { return fault_; }

    bool Skip(std::size_t count) {
        if (!Holds(count)) {
            return false;
        }
        next_ += count;
        left_ -= count;
        return true;
    }

    // Whether that many bytes are left. Does not advance.
    bool Holds(std::size_t count) {
        if (count > left_) {
            fault_ = {BodyFault::Kind::kTooShort, 0, Passed() + count};
        }
        return count <= left_;
    }

    // Whether the bytes left can hold `count` items, as claimed, of at least `itemSize` bytes each.
    bool HoldsItems(unsigned int count, std::size_t itemSize) {
        const std::uint64_t size = std::uint64_t{count} * itemSize;
        if (size > left_) {
            fault_ = {BodyFault::Kind::kCountBeyond, count, Passed() + size};
        }
        return size <= left_;
    }

    // Whether a name of that many units fits its field, which holds `most`.
    bool Fits(std::size_t length, std::size_t most, const char* unit) {
        if (length > most) {
            fault_ = {BodyFault::Kind::kTooLong, length, most, unit};
        }
        return length <= most;
    }

    std::optional<unsigned int> SkipInteger() {
        unsigned int value = 0;
        if (!Holds(4)) {
            return std::nullopt;
        }
        Skip(SMessageSpec::DeserializeField(next_, &value));
        return value;
    }

    // Skips the terminator, too; returns the length without it, or nothing when there is none.
    std::optional<std::size_t> SkipString() {
        if (!Holds(1)) {
            return std::nullopt;
        }
        const void* terminator = std::memchr(next_, 0, left_);
        if (terminator == nullptr) {
            fault_ = {BodyFault::Kind::kNoTerminator};
            return std::nullopt;
        }
        const auto length =
            static_cast<std::size_t>(static_cast<const unsigned char*>(terminator) - next_);
        Skip(length + 1);
        return length;
    }

  private:
    std::size_t Passed() const { return length_ - left_; }

    const unsigned char* next_;
    std::size_t left_;
    std::size_t length_;
    BodyFault fault_;
};

// How many of the bytes one complete record takes; nothing when they do not hold one.
template <class Record>
std::optional<std::size_t> CompleteSizeOf(const unsigned char* bytes, std::size_t length) {
    BoundedBytes body(bytes, length);
    return Record::SkipOver(body) ? std::optional(length - body.Left()) : std::nullopt;
}
