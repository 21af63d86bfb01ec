// A private folder of a test, removed with everything in it when the test ends.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace test_support {

class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string path = (std::filesystem::temp_directory_path() / kPattern).string();
        if (mkdtemp(path.data()) == nullptr) {
            throw std::runtime_error("no temporary folder can be made at " + path);
        }
        path_ = path;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return path_; }

    // Makes the folders on the way to the file.
    std::filesystem::path Write(const std::filesystem::path& name, std::string_view bytes) const {
        std::filesystem::path file = path_ / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << bytes;
        return file;
    }

  private:
    // Characters of two, three and four bytes in UTF-8, so that every test shows that paths may
    // hold them. None of them decomposes: file systems of a Mac may store a composed character in
    // parts. Short, because a socket's address holds a path of 107 bytes (103 on a Mac).
    static constexpr const char* kPattern = "krt9-ß路𝄞-XXXXXX";

    std::filesystem::path path_;
};

}  // namespace test_support
