#include "scenes/notation/Names.h"

#include <algorithm>
#include <array>

namespace scene_notation {

namespace {

std::size_t Rank(std::string_view name) {
    constexpr std::array<std::string_view, 7> kFirst = {
        "AXRole",        "AXSubrole", "AXIdentifier",      "AXTitle",
        "AXDescription", "AXValue",   "AXValueDescription"};
    const auto* found = std::find(kFirst.begin(), kFirst.end(), name);
    const bool isLong = name == "AXChildren" || name == "AXWindows";
    return static_cast<std::size_t>(found - kFirst.begin()) + (isLong ? 1 : 0);
}

}  // namespace

bool IsAttributeName(std::string_view name) {
    return !name.empty() && name[0] >= 'A' && name[0] <= 'Z';
}

bool AttributeComesBefore(std::string_view left, std::string_view right) {
    const std::size_t leftRank = Rank(left);
    const std::size_t rightRank = Rank(right);
    return leftRank != rightRank ? leftRank < rightRank : left < right;
}

std::string_view TagOfPlainNumbers(std::string_view attribute) {
    if (attribute == "AXPosition") {
        return tag::kPoint;
    }
    if (attribute == "AXSize") {
        return tag::kSize;
    }
    return attribute == "AXFrame" ? tag::kRect : std::string_view();
}

bool PlainArrayMeansSomethingElse(std::string_view attribute) {
    return attribute == "AXChildren" || attribute == "AXSelectedRows" || attribute == "AXWindows" ||
           !TagOfPlainNumbers(attribute).empty();
}

}  // namespace scene_notation
