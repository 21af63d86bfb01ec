// How long a test waits for what must happen.
#pragma once

namespace test_support {

// Seconds. They pass only when a test fails; a machine may be slow and busy.
inline constexpr double kPatience = 60;

}  // namespace test_support
