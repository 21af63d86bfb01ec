#include "scenes/notation/SceneError.h"

#include <algorithm>

namespace scene_notation {

namespace {

std::string WithoutControlCharacters(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; }, '?');
    return text;
}

}  // namespace

SceneError::SceneError(const std::string& place, const std::string& problem)
    : std::runtime_error(
          WithoutControlCharacters(place.empty() ? problem : place + ": " + problem)) {}

}  // namespace scene_notation
