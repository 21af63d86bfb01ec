// Drawings as a page or a picture in one file, which fetches nothing from outside.
#pragma once

#include <string>
#include <vector>

#include "tools/view/Drawing.h"

namespace krt9ctl {

// HTML; side by side.
std::string PageOf(const std::vector<Drawing>& drawings);

// SVG; side by side.
std::string PictureOf(const std::vector<Drawing>& drawings);

}  // namespace krt9ctl
