// The envelope record of the family: a kind and an even number of data bytes.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "protocol/MessageSpec.h"

struct SServerSpec : SMessageSpec {
    static constexpr unsigned int kSmallestSize = 8;  // bytes: kind and length

    SServerSpec();

    // Copies the n data bytes.
    SServerSpec(unsigned int kindValue, unsigned int n, const unsigned char* bytes);

    static std::optional<std::size_t> CompleteSize(const unsigned char* bytes, std::size_t length);

    unsigned char* Serialize() override;
    void Deserialize(const unsigned char* src) override;

    unsigned int kind = 0;
    unsigned int length = 0;          // data bytes without the pad byte
    std::vector<unsigned char> data;  // length rounded up to even; a pad byte is 0

  private:
    void TakeData(unsigned int n, const unsigned char* bytes);

    std::vector<unsigned char> buffer_;
};
