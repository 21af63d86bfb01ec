#include "protocol/ServerSpec.h"

#include <algorithm>
#include <limits>

#include "protocol/BoundedBytes.h"

namespace {

std::size_t RoundedUpToEven(unsigned int n) {
    return (std::size_t{n} + 1) & ~std::size_t{1};
}

}  // namespace

SServerSpec::SServerSpec() : SMessageSpec(kSmallestSize) {}

SServerSpec::SServerSpec(unsigned int kindValue, unsigned int n, const unsigned char* bytes)
    : SMessageSpec(kSmallestSize), kind(kindValue) {
    TakeData(n, bytes);
}

// A record whose size does not fit the 32-bit serial size is rejected.
std::optional<std::size_t> SServerSpec::CompleteSize(const unsigned char* bytes,
                                                     std::size_t length) {
    BoundedBytes body(bytes, length);
    const auto kind = body.SkipInteger();
    const auto n = body.SkipInteger();
    if (!kind || !n || !body.Skip(RoundedUpToEven(*n)) ||
        length - body.Left() > std::numeric_limits<unsigned int>::max()) {
        return std::nullopt;
    }
    return length - body.Left();
}

unsigned char* SServerSpec::Serialize() {
    buffer_.assign(std::max<std::size_t>(kSmallestSize + data.size(), serialSize), 0);
    unsigned char* dst = buffer_.data();
    dst += SerializeField(kind, dst);
    dst += SerializeField(length, dst);
    std::copy(data.begin(), data.end(), dst);
    return buffer_.data();
}

void SServerSpec::Deserialize(const unsigned char* src) {
    unsigned int n = 0;
    src += DeserializeField(src, &kind);
    src += DeserializeField(src, &n);
    TakeData(n, src);
}

void SServerSpec::TakeData(unsigned int n, const unsigned char* bytes) {
    length = n;
    data.assign(RoundedUpToEven(n), 0);
    std::copy_n(bytes, n, data.begin());
    serialSize = static_cast<unsigned int>(kSmallestSize + data.size());
}
