#include "desktop/Timecode.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>

namespace desktop {

namespace {

std::array<std::int64_t, 4> Fields(std::string_view timecode) {
    std::array<std::int64_t, 4> fields = {};
    const char* at = timecode.data();
    const char* end = at + timecode.size();
    for (std::size_t i = 0; i < fields.size(); ++i) {
        std::int32_t field = 0;
        const auto [after, error] = std::from_chars(at, end, field);
        const bool last = i + 1 == fields.size();
        if (error != std::errc() || field < 0 || (last ? after != end : after == end)) {
            return {};
        }
        fields[i] = field;
        at = last ? after : after + 1;  // any separator
    }
    return fields;
}

}  // namespace

std::string TimecodeAfter(std::string_view timecode, std::int64_t frames,
                          std::int64_t framesPerSecond) {
    const auto [hours, minutes, seconds, extra] = Fields(timecode);
    const std::int64_t limit = std::int64_t{100} * 3600 * framesPerSecond - 1;
    std::int64_t total = ((hours * 60 + minutes) * 60 + seconds) * framesPerSecond + extra;
    total = std::clamp<std::int64_t>(total + frames, 0, limit);
    const std::int64_t whole = total / framesPerSecond;
    return fmt::format("{:02}:{:02}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60,
                       total % framesPerSecond);
}

}  // namespace desktop
