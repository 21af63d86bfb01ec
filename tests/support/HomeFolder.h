// A private home folder of a test, named by HOME while the object exists.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "VEKCommon/Names.h"
#include "tests/support/EnvironmentVariable.h"
#include "tests/support/TemporaryFolder.h"

namespace test_support {

class HomeFolder {
  public:
    const std::filesystem::path& Path() const { return folder_.Path(); }

    std::filesystem::path MakersFolder() const { return Path() / kTranslationsFolder; }

    void WriteTranslations(const std::string& language, std::string_view document) const {
        folder_.Write(MakersFolder() / (language + ".plist"), document);
    }

  private:
    TemporaryFolder folder_;
    EnvironmentVariable variable_{"HOME", folder_.Path().string()};
};

}  // namespace test_support
