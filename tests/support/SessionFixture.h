// A session of its own for a test: a fresh private folder that KRT9_SESSION_DIR names while the
// object exists, so that neither tests nor a running driver meet each other's names.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/EnvironmentVariable.h"
#include "tests/support/TemporaryFolder.h"

namespace test_support {

class SessionFixture {
  public:
    const std::filesystem::path& Path() const { return folder_.Path(); }

    // Writes a file into the session's folder; its path.
    std::filesystem::path Write(const std::string& name, std::string_view bytes) const {
        return folder_.Write(name, bytes);
    }

    // The names of the files that lie in the session's folder.
    std::vector<std::string> Files() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(Path())) {
            names.push_back(entry.path().filename().string());
        }
        return names;
    }

  private:
    TemporaryFolder folder_;
    EnvironmentVariable variable_{"KRT9_SESSION_DIR", folder_.Path().string()};
};

}  // namespace test_support
