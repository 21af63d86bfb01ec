// What somebody may have planted in the place of the session's folder.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <functional>

#include "tests/support/EnvironmentVariable.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/users/OtherUser.h"
#include "tests/users/PlantedFile.h"

namespace {

namespace fs = std::filesystem;
using test_support::Described;

void MakeFolder(const fs::path& path, mode_t mode) {
    fs::create_directory(path);
    std::ofstream(path / "kept") << "content";
    ASSERT_EQ(chmod(path.c_str(), mode), 0);
}

struct Place {
    std::string name;
    std::function<void(const fs::path& path)> plant;
    std::string reason;
    bool needsRoot = false;
};

std::vector<Place> Places() {
    return {
        {"AnyoneMayWrite", [](const auto& path) { MakeFolder(path, 0777); },
         "has mode 0777 instead of 0700"},
        {"AnyoneMayWriteButNotDelete", [](const auto& path) { MakeFolder(path, 01777); },
         "has mode 1777 instead of 0700"},
        {"TheGroupMayWrite", [](const auto& path) { MakeFolder(path, 0770); },
         "has mode 0770 instead of 0700"},
        {"OthersMayEnter", [](const auto& path) { MakeFolder(path, 0711); },
         "has mode 0711 instead of 0700"},
        {"AnotherUserOwns",
         [](const auto& path) {
             MakeFolder(path, 0700);
             ASSERT_EQ(chown(path.c_str(), test_support::kOtherUser, test_support::kOtherUser), 0);
         },
         "belongs to user 65534 instead of 0", true},
        {"IsALinkToAGoodFolder",
         [](const auto& path) {
             MakeFolder(path.string() + "-good", 0700);
             fs::create_symlink(path.string() + "-good", path);
         },
         "is a symbolic link"},
        {"IsALinkToABadFolder",
         [](const auto& path) {
             MakeFolder(path.string() + "-bad", 0777);
             fs::create_symlink(path.string() + "-bad", path);
         },
         "is a symbolic link"},
        {"IsALinkToNowhere",
         [](const auto& path) { fs::create_symlink(path.string() + "-nowhere", path); },
         "is a symbolic link"},
        {"IsALinkToItself", [](const auto& path) { fs::create_symlink(path, path); },
         "is a symbolic link"},
        {"IsAFile", [](const auto& path) { std::ofstream(path) << "content"; }, "is not a folder"},
        {"IsAPipeThatNobodyWritesTo",
         [](const auto& path) { ASSERT_EQ(mkfifo(path.c_str(), 0600), 0); }, "is not a folder"},
    };
}

class SessionFolder : public testing::TestWithParam<Place> {};

INSTANTIATE_TEST_SUITE_P(That, SessionFolder, testing::ValuesIn(Places()),
                         [](const auto& info) { return info.param.name; });

}  // namespace

TEST_P(SessionFolder, IsRefusedByEveryProgramAndLeftAsItIs) {
    if (GetParam().needsRoot && geteuid() != 0) {
        GTEST_SKIP() << "only root can give a folder to another user";
    }
    const test_support::TemporaryFolder surroundings;
    const fs::path session = surroundings.Path() / "session";
    GetParam().plant(session);
    const std::string before = Described(surroundings.Path());
    const test_support::EnvironmentVariable variable("KRT9_SESSION_DIR", session);
    for (const auto& program :
         {test_support::Driver(), test_support::Desktop(), test_support::Control({"pointer"}),
          test_support::Control({"watch"}), test_support::Control({"desktop", "log"}),
          test_support::Control({"dump"})}) {
        test_support::ExpectOneLine(program, session, GetParam().reason);
    }
    EXPECT_EQ(Described(surroundings.Path()), before);
}
