// A session of its own for a test: a fresh private folder that KRT9_SESSION_DIR names while the
// object lives, so that neither tests nor a running driver meet each other's names.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace test_support {

class SessionFixture {
  public:
    SessionFixture() {
        std::string path = (std::filesystem::temp_directory_path() / "krt9-test-XXXXXX").string();
        if (mkdtemp(path.data()) == nullptr) {
            throw std::runtime_error("no temporary folder can be made at " + path);
        }
        path_ = path;
        setenv("KRT9_SESSION_DIR", path_.c_str(), 1);
    }
    SessionFixture(const SessionFixture&) = delete;
    SessionFixture& operator=(const SessionFixture&) = delete;
    ~SessionFixture() {
        unsetenv("KRT9_SESSION_DIR");
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::filesystem::path& Path() const { return path_; }

    // The names of the files that lie in the session's folder.
    std::vector<std::string> Files() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(path_)) {
            names.push_back(entry.path().filename().string());
        }
        return names;
    }

  private:
    std::filesystem::path path_;
};

}  // namespace test_support
