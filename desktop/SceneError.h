// What is wrong with a scene or a command, and where: one line for its author.
#pragma once

#include <stdexcept>
#include <string>

namespace desktop {

class SceneError : public std::runtime_error {
  public:
    SceneError(const std::string& place, const std::string& problem)
        : std::runtime_error(place.empty() ? problem : place + ": " + problem) {}
};

}  // namespace desktop
