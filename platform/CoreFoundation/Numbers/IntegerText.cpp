#include "platform/CoreFoundation/Numbers/IntegerText.h"

#include <algorithm>
#include <limits>

namespace core_foundation {

bool IsBlank(char16_t unit) {
    return unit <= u' ' || (unit >= 0x7F && unit <= 0xA0) || (unit >= 0x2000 && unit <= 0x200B) ||
           unit == 0x3000;
}

std::int32_t LeadingInteger(std::u16string_view text) {
    constexpr std::int64_t kLeast = std::numeric_limits<std::int32_t>::min();
    constexpr std::int64_t kGreatest = std::numeric_limits<std::int32_t>::max();
    constexpr std::int64_t kBase = 10;

    auto next = std::find_if_not(text.begin(), text.end(), IsBlank);
    const bool negative = next != text.end() && *next == u'-';
    if (next != text.end() && (*next == u'-' || *next == u'+')) {
        next = std::find_if_not(next + 1, text.end(), IsBlank);
    }
    std::int64_t value = 0;
    for (; next != text.end() && *next >= u'0' && *next <= u'9'; ++next) {
        value = std::min(value * kBase + (*next - u'0'), kGreatest + 1);
    }
    return static_cast<std::int32_t>(std::clamp(negative ? -value : value, kLeast, kGreatest));
}

}  // namespace core_foundation
