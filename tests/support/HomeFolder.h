// A private home folder of a test, named by HOME while the object exists.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "VEKCommon/Names.h"
#include "tests/support/TemporaryFolder.h"

namespace test_support {

class HomeFolder {
  public:
    HomeFolder() {
        if (const char* home = std::getenv("HOME")) {
            before_ = home;
        }
        setenv("HOME", folder_.Path().c_str(), 1);
    }
    ~HomeFolder() { setenv("HOME", before_.c_str(), 1); }
    HomeFolder(const HomeFolder&) = delete;
    HomeFolder& operator=(const HomeFolder&) = delete;

    const std::filesystem::path& Path() const { return folder_.Path(); }

    std::filesystem::path MakersFolder() const { return Path() / kTranslationsFolder; }

    void WriteTranslations(const std::string& language, std::string_view document) const {
        folder_.Write(MakersFolder() / (language + ".plist"), document);
    }

  private:
    TemporaryFolder folder_;
    std::string before_;
};

}  // namespace test_support
