// Where a bundle keeps its files, and which of its languages is used.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace bundle {

// The folder of a bundle: "Contents" holds everything, or else (a flat bundle, or the folder of a
// program that is in no bundle) the folder itself does, where "Resources" is searched first.
class Layout {
  public:
    explicit Layout(std::filesystem::path folder);

    const std::filesystem::path& Folder() const { return folder_; }
    const std::filesystem::path& ResourceFolder() const { return resourceFolders_.front(); }

    // May name a file that does not exist.
    const std::filesystem::path& InfoPath() const { return infoPath_; }

    // Names of the language folders, without ".lproj", in alphabetical order.
    std::vector<std::string> Localizations() const;

    // A file outside of the language folders, else the one in the first of `localizations` that has
    // it; nothing when there is none.
    std::optional<std::filesystem::path> Find(const std::string& fileName,
                                              const std::vector<std::string>& localizations) const;

  private:
    std::filesystem::path folder_;
    std::filesystem::path infoPath_;
    std::vector<std::filesystem::path> resourceFolders_;  // at least one, in order of search
};

// The bundle that holds the running program, or else the program's own folder.
std::filesystem::path MainBundleFolder();

}  // namespace bundle
