// What is wrong with a scene or a command, and where: one line for its author.
#pragma once

#include <stdexcept>
#include <string>

namespace scene_notation {

class SceneError : public std::runtime_error {
  public:
    // Control characters of either text, which names and paths out of a scene can contain, become
    // question marks. An empty place is left out.
    SceneError(const std::string& place, const std::string& problem);
};

}  // namespace scene_notation
