// Screens and pointer, requested from the desktop each time. Global display coordinates, origin at
// the top left of the first screen.
#pragma once

#include <optional>
#include <vector>

#include "platform/DesktopLink/Value.h"

namespace application_services {

struct Arrangement {
    std::vector<desktop_link::Rect> screens;  // the one at the origin first; empty: none
    std::size_t keyScreen = 0;                // index of the screen with the key window
};

// One exchange.
Arrangement Screens();

struct Pointer {
    desktop_link::Point location;                   // 0, 0 when there is no desktop
    std::optional<desktop_link::Rect> firstScreen;  // none when there is no screen
};

// One exchange.
Pointer CurrentPointer();

}  // namespace application_services
