#include "platform/CoreFoundation/IntegerText.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <limits>

namespace core_foundation {

std::int32_t LeadingInteger(std::u16string_view text) {
    constexpr std::int64_t kLeast = std::numeric_limits<std::int32_t>::min();
    constexpr std::int64_t kGreatest = std::numeric_limits<std::int32_t>::max();
    constexpr std::int64_t kBase = 10;

    auto next = std::find_if_not(text.begin(), text.end(),
                                 [](char16_t unit) { return u_isUWhiteSpace(unit); });
    const bool negative = next != text.end() && *next == u'-';
    if (next != text.end() && (*next == u'-' || *next == u'+')) {
        ++next;
    }
    std::int64_t value = 0;
    for (; next != text.end() && *next >= u'0' && *next <= u'9'; ++next) {
        value = std::min(value * kBase + (*next - u'0'), kGreatest + 1);
    }
    return static_cast<std::int32_t>(std::clamp(negative ? -value : value, kLeast, kGreatest));
}

}  // namespace core_foundation
