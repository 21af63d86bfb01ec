#include "platform/CoreFoundation/Bundle/BundleLayout.h"

#include <algorithm>
#include <set>
#include <system_error>
#include <utility>

namespace bundle {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kLanguageFolder = ".lproj";

bool IsFolder(const fs::path& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

bool IsFile(const fs::path& path) {
    std::error_code error;
    return fs::is_regular_file(path, error);
}

}  // namespace

Layout::Layout(fs::path folder) : folder_(std::move(folder)) {
    const fs::path contents = folder_ / "Contents";
    if (IsFolder(contents)) {
        infoPath_ = contents / "Info.plist";
        resourceFolders_ = {contents / "Resources"};
        return;
    }
    infoPath_ = folder_ / "Info.plist";
    if (IsFolder(folder_ / "Resources")) {
        resourceFolders_.push_back(folder_ / "Resources");
    }
    resourceFolders_.push_back(folder_);
}

std::vector<std::string> Layout::Localizations() const {
    std::set<std::string> names;
    for (const fs::path& folder : resourceFolders_) {
        std::error_code error;
        for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
             entry.increment(error)) {
            if (entry->path().extension() == kLanguageFolder && IsFolder(entry->path())) {
                names.insert(entry->path().stem().string());
            }
        }
    }
    return {names.begin(), names.end()};
}

std::optional<fs::path> Layout::Find(const std::string& fileName,
                                     const std::vector<std::string>& localizations) const {
    for (const fs::path& folder : resourceFolders_) {
        if (IsFile(folder / fileName)) {
            return folder / fileName;
        }
    }
    for (const std::string& localization : localizations) {
        for (const fs::path& folder : resourceFolders_) {
            const fs::path file = folder / (localization + std::string(kLanguageFolder)) / fileName;
            if (IsFile(file)) {
                return file;
            }
        }
    }
    return std::nullopt;
}

fs::path MainBundleFolder() {
    std::error_code error;
    const fs::path folder = fs::read_symlink("/proc/self/exe", error).parent_path();
    const fs::path contents = folder.parent_path();
    const bool isInBundle = folder.filename() == "MacOS" && contents.filename() == "Contents";
    return isInBundle ? contents.parent_path() : folder;
}

}  // namespace bundle
