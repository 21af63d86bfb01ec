// What somebody may have planted under the names of the session's sockets.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <functional>
#include <memory>

#include "tests/support/ChildProcess.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/users/OtherUser.h"
#include "tests/users/PlantedFile.h"

namespace {

namespace fs = std::filesystem;
using test_support::ChildProcess;
using test_support::Command;
using test_support::Ending;
using test_support::Program;

struct Thing {
    std::string name;
    std::string reason;
    bool needsOtherUser = false;
};

const std::vector<Thing> kThings = {
    {"AFile", "is not a socket"},
    {"AFolder", "is not a socket"},
    {"APipe", "is not a socket"},
    {"ALinkToAFile", "is a symbolic link"},
    {"ALinkToNowhere", "is a symbolic link"},
    {"ALinkToALivingSocket", "is a symbolic link"},
    {"AnotherUsersLivingSocket", "belongs to user 65534 instead of 0", true},
    {"AnotherUsersDeadSocket", "belongs to user 65534 instead of 0", true},
};
const std::vector<std::string> kNames = {"KRT9Background", "VEK_KRT9", "krt9-desktop"};

class SessionName : public testing::TestWithParam<std::tuple<std::string, Thing>> {
  protected:
    const std::string& Name() const { return std::get<0>(GetParam()); }
    const Thing& Planted() const { return std::get<1>(GetParam()); }

    void SetUp() override {
        const std::string reason = Planted().needsOtherUser ? test_support::NoOtherUser() : "";
        if (!reason.empty()) {
            GTEST_SKIP() << reason;
        }
        elsewhere_.Write("file", "content");
        Plant(session_.Path() / Name());
    }

    void Plant(const fs::path& path) {
        const std::string& thing = Planted().name;
        if (thing == "AFile") {
            std::ofstream(path) << "content";
        } else if (thing == "AFolder") {
            fs::create_directory(path);
            std::ofstream(path / "file") << "content";
        } else if (thing == "APipe") {
            ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
        } else if (thing == "ALinkToAFile") {
            fs::create_symlink(elsewhere_.Path() / "file", path);
        } else if (thing == "ALinkToNowhere") {
            fs::create_symlink(elsewhere_.Path() / "nowhere", path);
        } else if (thing == "ALinkToALivingSocket") {
            Serve({test_support::StrangerPath(), {"serve", elsewhere_.Path() / "socket"}});
            fs::create_symlink(elsewhere_.Path() / "socket", path);
        } else {
            // The folder is opened for a moment: nobody could plant it otherwise.
            ASSERT_EQ(chmod(session_.Path().c_str(), 0777), 0);
            Serve(test_support::AsOtherUser(test_support::StrangerPath(), {"serve", path}));
            ASSERT_EQ(chmod(session_.Path().c_str(), 0700), 0);
            if (thing == "AnotherUsersDeadSocket") {
                server_->Signal(SIGKILL);
                server_->WaitForExit();
            }
        }
    }

    void Serve(const Command& command) {
        server_ = std::make_unique<ChildProcess>(command.path, command.arguments);
        ASSERT_TRUE(server_->WaitForOutput("serving")) << server_->StandardError();
    }

    // Everything there is, but for what comes and goes with the programs.
    std::string Everything() const {
        return test_support::Described(session_.Path() / Name()) +
               test_support::Described(elsewhere_.Path());
    }

    test_support::SessionFixture session_;
    test_support::TemporaryFolder elsewhere_;
    std::unique_ptr<ChildProcess> server_;
};

INSTANTIATE_TEST_SUITE_P(Under, SessionName,
                         testing::Combine(testing::ValuesIn(kNames), testing::ValuesIn(kThings)),
                         [](const auto& info) {
                             std::string name = std::get<0>(info.param);
                             std::erase_if(name, [](char c) { return c == '-' || c == '_'; });
                             return name + "Lies" + std::get<1>(info.param).name;
                         });

// The verb of krt9ctl that has to do with the name.
Program ControlFor(const std::string& name) {
    if (name == "KRT9Background") {
        return test_support::Control({"pointer"});
    }
    return name == "VEK_KRT9" ? test_support::Control({"watch"})
                              : test_support::Control({"desktop", "log"});
}

}  // namespace

TEST_P(SessionName, IsRefusedByEveryProgramThatUsesItAndLeftAsItIs) {
    const std::string path = session_.Path() / Name();
    const std::string before = Everything();

    Program driver = test_support::Driver();
    if (Name() == "krt9-desktop") {
        driver.prefix = "no desktop: ";
    }
    if (Name() != "KRT9Background") {
        driver.goesOnAt = "accessibilityEnabled";
    }
    test_support::ExpectOneLine(driver, path, Planted().reason);
    EXPECT_EQ(Everything(), before) << "after the driver";

    test_support::ExpectOneLine(ControlFor(Name()), path, Planted().reason);
    EXPECT_EQ(Everything(), before) << "after krt9ctl";

    Program desktop = test_support::Desktop();
    if (Name() == "krt9-desktop") {
        test_support::ExpectOneLine(desktop, path, Planted().reason);
    } else {
        desktop.ending = Ending::signal;  // it does not use the name
        test_support::ExpectNoLine(desktop, path);
    }
    EXPECT_EQ(Everything(), before) << "after the desktop";
    EXPECT_THAT(session_.Files(), testing::ElementsAre(Name()));

    if (server_) {
        EXPECT_FALSE(server_->WaitForOutput("met", 0.05)) << "somebody connected";
    }
}
