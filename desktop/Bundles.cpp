#include "desktop/Bundles.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "desktop/PropertyList.h"
#include "scenes/notation/SceneError.h"

namespace desktop {

using scene_notation::SceneError;

namespace fs = std::filesystem;

namespace {

const std::string kFolderPrefix = "krt9-bundles-";

// A file name that stays in its folder, whatever the application is called.
std::string SafeFileName(const std::string& name) {
    constexpr std::size_t kLongest = 100;  // bytes; file systems take 255
    std::string safe = name.substr(0, kLongest);
    for (char& c : safe) {
        if (c == '/' || c == '\0') {
            c = '_';
        }
    }
    // A name cut inside a character would not be UTF-8.
    while (!safe.empty() && safe.size() < name.size() &&
           (static_cast<unsigned char>(name[safe.size()]) & 0xC0) == 0x80) {
        safe.pop_back();
    }
    return safe.empty() || safe[0] == '.' ? "_" + safe : safe;
}

void WriteFile(const fs::path& path, const std::string& content) {
    fs::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file << content;
    file.close();
    if (!file) {
        throw SceneError("", "cannot write " + path.string() + ": " + std::strerror(errno));
    }
}

std::string MakeFolder(const std::string& parent) {
    const fs::path base =
        fs::absolute(parent.empty() ? fs::temp_directory_path() : fs::path(parent));
    std::string pattern = (base / (kFolderPrefix + "XXXXXX")).string();
    if (mkdtemp(pattern.data()) == nullptr) {
        throw SceneError("",
                         "cannot make a folder in " + base.string() + ": " + std::strerror(errno));
    }
    return pattern;
}

}  // namespace

Bundles::~Bundles() {
    if (!folder_.empty()) {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }
}

void Bundles::Write(Application& application) {
    if (!application.info) {
        return;
    }
    const std::string place = application.Key() + ".info";
    nlohmann::json info = *application.info;
    if (application.bundleIdentifier && !info.contains("CFBundleIdentifier")) {
        info["CFBundleIdentifier"] = *application.bundleIdentifier;
    }
    const std::string propertyList = PropertyList(info, place);
    if (folder_.empty()) {
        folder_ = MakeFolder(parent_);
    }
    // Two applications may have one name.
    const fs::path bundle = fs::path(folder_) / std::to_string(application.pid) /
                            (SafeFileName(application.name) + ".app");
    try {
        WriteFile(bundle / "Contents" / "Info.plist", propertyList);
        for (const auto& [language, texts] : application.localizations) {
            WriteFile(bundle / "Contents" / "Resources" / (SafeFileName(language) + ".lproj") /
                          "Localizable.strings",
                      PropertyList(texts, place));
        }
    } catch (const fs::filesystem_error& error) {
        throw SceneError("", error.what());
    }
    application.bundlePath = bundle.string();
}

void Bundles::Remove(Application& application) {
    if (application.bundlePath) {
        std::error_code ignored;
        fs::remove_all(fs::path(*application.bundlePath).parent_path(), ignored);
        application.bundlePath.reset();
    }
}

void RemoveAbandonedBundles(const std::string& parent) {
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(parent, ignored)) {
        if (entry.path().filename().string().starts_with(kFolderPrefix)) {
            fs::remove_all(entry.path(), ignored);
        }
    }
}

}  // namespace desktop
