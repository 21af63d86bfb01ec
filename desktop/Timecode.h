// "01:00:00:05": hours, minutes, seconds, frames.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace desktop {

// The timecode that many frames later (or earlier), between 00:00:00:00 and the last frame of hour
// 99. A text that is not a timecode counts as 00:00:00:00.
std::string TimecodeAfter(std::string_view timecode, std::int64_t frames,
                          std::int64_t framesPerSecond);

}  // namespace desktop
