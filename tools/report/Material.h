// What a replay starts from: a scene, and a session recorded with it.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "tools/recording/Recording.h"

namespace krt9ctl {

// The members of a report.
namespace member {
inline constexpr char kReport[] = "report.json";
inline constexpr char kDoctor[] = "doctor.jsonl";
inline constexpr char kScene[] = "scene.json";
inline constexpr char kTrace[] = "trace.jsonl";
inline constexpr char kRecording[] = "recording.txt";
}  // namespace member

struct Material {
    std::string scene;
    std::vector<recording::Step> steps;
    std::string language = "en";
};

// What cannot be replayed, in one line without the file's name.
class UnfitMaterial : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Reads a report, or a recording and the scene file that must then be given. Throws UnfitMaterial,
// and std::runtime_error for a scene file that cannot be read.
Material ReadMaterial(const std::string& path, const std::optional<std::string>& sceneFile);

}  // namespace krt9ctl
