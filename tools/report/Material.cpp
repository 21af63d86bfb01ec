#include "tools/report/Material.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>

#include "tools/Output.h"
#include "tools/Text.h"
#include "tools/report/Archive.h"

namespace krt9ctl {

namespace {

constexpr std::size_t kMostSteps = 20000;

// Throws UnfitMaterial for anything but a file of at most that size.
std::string ContentOf(const std::string& path) {
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw UnfitMaterial(std::strerror(errno));
    }
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(path, ignored)) {
        throw UnfitMaterial("it is no file");
    }
    std::string content(kLargestMember + 1, '\0');
    file.read(content.data(), static_cast<std::streamsize>(content.size()));
    content.resize(static_cast<std::size_t>(file.gcount()));
    if (content.size() > kLargestMember) {
        throw UnfitMaterial(fmt::format("it has more than {} MiB", kLargestMember >> 20));
    }
    return content;
}

// The reason that the report itself gives.
std::string WhyMissing(const std::map<std::string, std::string>& members, const char* name) {
    const auto about = members.find(member::kReport);
    const Json report =
        about == members.end() ? Json() : Json::parse(about->second, nullptr, false);
    if (report.is_object() && report.contains("missing") && report["missing"].is_object()) {
        const auto reason = report["missing"].find(name);
        if (reason != report["missing"].end() && reason->is_string()) {
            return fmt::format(": {}", Printable(reason->get<std::string>()));
        }
    }
    return "";
}

std::map<std::string, std::string> MembersOf(const std::string& archive) {
    try {
        return ReadArchive(archive, {member::kReport, member::kScene, member::kRecording});
    } catch (const std::runtime_error& error) {
        throw UnfitMaterial(error.what());
    }
}

void TakeSteps(const std::string& text, Material& material) {
    try {
        material.steps = recording::ReadRecording(text);
    } catch (const std::invalid_argument& error) {
        throw UnfitMaterial(fmt::format("it is no recording: {}", error.what()));
    }
    if (material.steps.size() > kMostSteps) {
        throw UnfitMaterial(fmt::format("it has more than {} steps", kMostSteps));
    }
    const auto isAsk = [](const recording::Step& step) { return step.Verb() == "ask"; };
    if (std::none_of(material.steps.begin(), material.steps.end(), isAsk)) {
        throw UnfitMaterial("no request is recorded in it");
    }
    for (const recording::Step& step : material.steps) {
        if (step.Verb() == "language") {
            material.language = step.Rest();
        }
    }
}

}  // namespace

Material ReadMaterial(const std::string& path, const std::optional<std::string>& sceneFile) {
    const std::string content = ContentOf(path);
    Material material;
    if (IsArchive(content)) {
        const auto members = MembersOf(content);
        for (const char* name : {member::kScene, member::kRecording}) {
            if (!members.contains(name)) {
                throw UnfitMaterial(
                    fmt::format("the report has no {}{}", name, WhyMissing(members, name)));
            }
        }
        material.scene = members.at(member::kScene);
        TakeSteps(members.at(member::kRecording), material);
    } else {
        TakeSteps(content, material);
        if (!sceneFile) {
            throw UnfitMaterial("a recording is replayed on a scene: give one with --scene");
        }
    }
    if (sceneFile) {
        try {
            material.scene = ContentOf(*sceneFile);
        } catch (const UnfitMaterial& error) {
            throw std::runtime_error(
                fmt::format("'{}' cannot be read: {}", Printable(*sceneFile), error.what()));
        }
    }
    return material;
}

}  // namespace krt9ctl
