// Byte sequences in the tests of the message protocol.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string_view>
#include <vector>

#include "protocol/MessageSpec.h"

using Bytes = std::vector<unsigned char>;

inline Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

// As they travel: 4 bytes each, least significant first.
inline Bytes Integers(std::initializer_list<unsigned int> values) {
    Bytes bytes;
    for (const unsigned int value : values) {
        for (unsigned int shift = 0; shift < 32; shift += 8) {
            bytes.push_back(static_cast<unsigned char>(value >> shift));
        }
    }
    return bytes;
}

// With its terminator.
inline Bytes Text(std::string_view text) {
    Bytes bytes(text.begin(), text.end());
    bytes.push_back(0);
    return bytes;
}

// UTF-16 units of a text of ASCII characters.
inline Bytes Units(std::string_view text) {
    Bytes bytes;
    for (const char character : text) {
        bytes.push_back(static_cast<unsigned char>(character));
        bytes.push_back(0);
    }
    return bytes;
}

// All bytes of a record's serial buffer.
inline Bytes Serialized(SMessageSpec& record) {
    const unsigned char* const bytes = record.Serialize();
    return {bytes, bytes + record.SerialBufferSize()};
}

// A copy that ends exactly where its allocation ends, so that the sanitizer sees a read beyond it.
class ExactCopy {
  public:
    ExactCopy(const Bytes& bytes, std::size_t length)
        : bytes_(std::make_unique<unsigned char[]>(length)), length_(length) {
        for (std::size_t i = 0; i < length; ++i) {
            bytes_[i] = bytes[i];
        }
    }
    explicit ExactCopy(const Bytes& bytes) : ExactCopy(bytes, bytes.size()) {}

    const unsigned char* Start() const { return bytes_.get(); }
    std::size_t Length() const { return length_; }

  private:
    std::unique_ptr<unsigned char[]> bytes_;
    std::size_t length_;
};
