// Screens and pointer, asked of the desktop anew each time. Global display coordinates, origin at
// the top left of the main screen.
#pragma once

#include <optional>
#include <vector>

#include "platform/DesktopLink/Value.h"

namespace application_services {

// The main screen first; empty when there is none.
std::vector<desktop_link::Rect> Screens();

struct Pointer {
    desktop_link::Point location;                  // 0, 0 when there is no desktop
    std::optional<desktop_link::Rect> mainScreen;  // none when there is no screen
};

// One exchange.
Pointer CurrentPointer();

}  // namespace application_services
