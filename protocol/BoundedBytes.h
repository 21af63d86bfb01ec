// Walks over bytes of known length without ever looking beyond their end.
#pragma once

#include <cstddef>
#include <cstring>
#include <optional>

#include "protocol/MessageSpec.h"

class BoundedBytes {
  public:
    BoundedBytes(const unsigned char* bytes, std::size_t length) : next_(bytes), left_(length) {}

    std::size_t Left() const { return left_; }

    bool Skip(std::size_t count) {
        if (count > left_) {
            return false;
        }
        next_ += count;
        left_ -= count;
        return true;
    }

    std::optional<unsigned int> SkipInteger() {
        unsigned int value = 0;
        if (left_ < 4) {
            return std::nullopt;
        }
        Skip(SMessageSpec::DeserializeField(next_, &value));
        return value;
    }

    // Over the terminator too; answers the length without it, and nothing when none is there.
    std::optional<std::size_t> SkipString() {
        const void* terminator = left_ == 0 ? nullptr : std::memchr(next_, 0, left_);
        if (terminator == nullptr) {
            return std::nullopt;
        }
        const auto length =
            static_cast<std::size_t>(static_cast<const unsigned char*>(terminator) - next_);
        Skip(length + 1);
        return length;
    }

  private:
    const unsigned char* next_;
    std::size_t left_;
};
