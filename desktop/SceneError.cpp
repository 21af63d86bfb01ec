#include "desktop/SceneError.h"

#include <algorithm>

namespace desktop {

namespace {

std::string OneLine(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; }, '?');
    return text;
}

}  // namespace

SceneError::SceneError(const std::string& place, const std::string& problem)
    : std::runtime_error(OneLine(place.empty() ? problem : place + ": " + problem)) {}

}  // namespace desktop
