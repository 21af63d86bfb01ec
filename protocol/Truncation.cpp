#include "protocol/Truncation.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace {

constexpr double kSmallest = std::numeric_limits<std::int32_t>::min();

std::int64_t TruncatedBetween(double low, double value, double high) {
    return std::isnan(value) ? 0 : static_cast<std::int64_t>(std::clamp(value, low, high));
}

}  // namespace

int TruncatedToInt(double value) {
    constexpr double largest = std::numeric_limits<std::int32_t>::max();
    return static_cast<int>(TruncatedBetween(kSmallest, value, largest));
}

unsigned int TruncatedToBitPattern(double value) {
    constexpr double largest = std::numeric_limits<std::uint32_t>::max();
    return static_cast<unsigned int>(TruncatedBetween(kSmallest, value, largest));
}
