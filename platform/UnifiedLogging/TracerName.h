// Where a tracer listens.
#pragma once

#include <cstddef>
#include <string_view>

namespace unified_logging {

inline constexpr std::string_view kTracerName = "signposts";
inline constexpr std::size_t kLongestLine = 16384;  // bytes of a frame's payload

}  // namespace unified_logging
