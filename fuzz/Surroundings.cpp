#include "fuzz/Surroundings.h"

#include <sys/stat.h>

#include <cstdlib>
#include <fstream>
#include <system_error>

#include "VEKCommon/Names.h"
#include "tests/support/TemporaryFolder.h"

namespace fuzz {

const std::filesystem::path& PrivateFolder() {
    static const test_support::TemporaryFolder folder;
    static const bool prepared = [] {
        const auto session = folder.Path() / "session";
        mkdir(session.c_str(), 0700);
        setenv("KRT9_SESSION_DIR", session.c_str(), 1);
        setenv("HOME", folder.Path().c_str(), 1);
        return true;
    }();
    (void)prepared;
    return folder.Path();
}

std::filesystem::path TranslationFolder() {
    return PrivateFolder() / kTranslationsFolder;
}

void WriteFile(const std::filesystem::path& file, std::span<const std::uint8_t> bytes) {
    std::error_code existsAlready;
    std::filesystem::create_directories(file.parent_path(), existsAlready);
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
}

}  // namespace fuzz
