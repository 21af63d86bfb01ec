// The bundles of applications on disk: NAME.app/Contents/Info.plist, and
// NAME.app/Contents/Resources/LANGUAGE.lproj/Localizable.strings.
#pragma once

#include <string>

#include "desktop/Model.h"

namespace desktop {

class Bundles {
  public:
    // A new folder is created in `parent` (empty: the system's temporary folder) with the first
    // bundle.
    explicit Bundles(std::string parent) : parent_(std::move(parent)) {}
    Bundles(const Bundles&) = delete;
    Bundles& operator=(const Bundles&) = delete;
    ~Bundles();  // removes all that was made

    // Does nothing for an application without `info`; sets its bundlePath otherwise. Throws
    // SceneError when it cannot be written.
    void Write(Application& application);
    void Remove(Application& application);

    const std::string& Folder() const { return folder_; }

  private:
    std::string parent_;
    std::string folder_;  // empty: not made yet
};

// Removes what killed desktops left in the folder. Only for a folder in which no other
// desktop runs.
void RemoveAbandonedBundles(const std::string& parent);

}  // namespace desktop
