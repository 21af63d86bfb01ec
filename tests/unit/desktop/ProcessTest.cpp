// krt9-desktop as a process.
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <fstream>

#include "tests/support/EnvironmentVariable.h"
#include "tests/support/Paths.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/Stage.h"
#include "tests/unit/desktop/SocketClient.h"

namespace desktop {

namespace {

namespace fs = std::filesystem;
using test_support::ChildProcess;
using testing::HasSubstr;

class Process : public testing::Test {
  protected:
    static std::unique_ptr<ChildProcess> Launch(const std::vector<std::string>& arguments) {
        return test_support::Stage::LaunchDesktop(arguments);
    }
    std::string Scene(const json& scene) const {
        return session_.Write("scene.json", scene.dump());
    }
    // Folder content but for the scene.
    std::size_t FilesLeft() const {
        std::size_t count = 0;
        for (const auto& entry : fs::directory_iterator(session_.Path())) {
            count += entry.path().filename() == "scene.json" ? 0 : 1;
        }
        return count;
    }

    test_support::SessionFixture session_;
};

TEST_F(Process, EndsWithStatusZeroOnSignalsAndLeavesNothingBehind) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const auto process = Launch({KRT9_SCENES "/editor-10.4.6.json"});
        ASSERT_TRUE(process->WaitForOutput("ready\n"));
        EXPECT_GE(FilesLeft(), 2u) << "socket and bundles";
        process->Signal(signal);
        EXPECT_EQ(process->WaitForExit(), 0);
        EXPECT_EQ(FilesLeft(), 0u) << "after signal " << signal;
    }
}

TEST_F(Process, EndsOnTheCommandStop) {
    const auto process = Launch({Scene(json::object())});
    ASSERT_TRUE(process->WaitForOutput("ready\n"));
    SocketClient client;
    EXPECT_TRUE(client.Run({{"command", "stop"}}));
    EXPECT_EQ(process->WaitForExit(), 0);
    EXPECT_EQ(FilesLeft(), 0u);
}

TEST_F(Process, WritesItsLogAtOnce) {
    const std::string log = session_.Path() / "log";
    const auto process = Launch({Scene(json::object()), "--log", log});
    ASSERT_TRUE(process->WaitForOutput("ready\n"));
    SocketClient client;
    Request post;
    post.operation = Operation::postEvent;
    post.event.type = 5;
    post.event.position = {3, 4};
    client.Ask(post);
    std::ifstream file(log);
    std::string line;
    ASSERT_TRUE(std::getline(file, line)) << "nothing was written while the process runs";
    EXPECT_EQ(line, R"({"n":1,"event":"mouseMoved","type":5,"position":[3,4],"button":0,"flags":0,)"
                    R"("flagsSet":false,"source":null,"tap":0})");
}

TEST_F(Process, RefusesASecondDesktopInTheSession) {
    const auto first = Launch({Scene(json::object())});
    ASSERT_TRUE(first->WaitForOutput("ready\n"));
    const auto second = Launch({Scene(json::object())});
    EXPECT_EQ(second->WaitForExit(), 1);
    EXPECT_EQ(second->StandardError(),
              "krt9-desktop: another desktop runs in this session already\n");
    EXPECT_TRUE(SocketClient().Run({{"command", "state"}}));
}

TEST_F(Process, TakesTheSessionOverFromOneThatWasKilled) {
    const json scene = {{"applications", {{{"bundleID", "a"}, {"info", json::object()}}}}};
    const auto killed = Launch({Scene(scene)});
    ASSERT_TRUE(killed->WaitForOutput("ready\n"));
    killed->Signal(SIGKILL);
    EXPECT_EQ(killed->WaitForExit(), 128 + SIGKILL);
    EXPECT_EQ(FilesLeft(), 2u);
    const auto next = Launch({Scene(scene)});
    ASSERT_TRUE(next->WaitForOutput("ready\n"));
    EXPECT_EQ(FilesLeft(), 2u) << "the bundles of the killed one are gone";
    next->Signal(SIGINT);
    EXPECT_EQ(next->WaitForExit(), 0);
    EXPECT_EQ(FilesLeft(), 0u);
}

TEST_F(Process, ReportsBadScenesInOneLine) {
    const auto problemOf = [](const std::string& scene) {
        const auto process = Launch({scene});
        EXPECT_EQ(process->WaitForExit(), 1);
        EXPECT_EQ(process->StandardOutput(), "");
        const std::string& problem = process->StandardError();
        EXPECT_EQ(std::count(problem.begin(), problem.end(), '\n'), 1) << problem;
        return problem;
    };
    EXPECT_THAT(problemOf(session_.Path() / "none.json"),
                HasSubstr("none.json: No such file or directory"));
    EXPECT_THAT(problemOf(Scene({{"front", "x"}})),
                HasSubstr("scene.json: front: no application \"x\""));
    EXPECT_THAT(problemOf(session_.Path()), HasSubstr("Is a directory"));
    EXPECT_EQ(FilesLeft(), 0u);
}

TEST_F(Process, SaysReadyOnTheDescriptorThatItIsGiven) {
    const auto second = Launch({Scene(json::object()), "--ready-fd", "2", "--log", "/dev/full"});
    EXPECT_TRUE(second->WaitForOutput("ready\n"));
    EXPECT_TRUE(SocketClient().Run({{"command", "plug"}, {"device", {{"name", "x"}}}}));
    second->Signal(SIGINT);
    EXPECT_EQ(second->WaitForExit(), 1);
    EXPECT_EQ(second->StandardOutput(), "");
    EXPECT_EQ(second->StandardError(), "ready\nkrt9-desktop: /dev/full: No space left on device\n")
        << "the standard error stays open";

    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const auto third = Launch({Scene(json::object()), "--ready-fd", std::to_string(ends[1])});
    close(ends[1]);
    char text[16] = {};
    EXPECT_EQ(read(ends[0], text, sizeof text), 6);
    EXPECT_STREQ(text, "ready\n");
    EXPECT_EQ(read(ends[0], text, sizeof text), 0) << "the descriptor is closed then";
    close(ends[0]);

    const auto fourth = Launch({Scene(json::object()), "--ready-fd", "77"});
    EXPECT_EQ(fourth->WaitForExit(), 1);
    EXPECT_EQ(fourth->StandardError(),
              "krt9-desktop: another desktop runs in this session already\n");
}

TEST_F(Process, EndsWhenItCannotSayThatItIsReady) {
    const auto process = Launch({Scene(json::object()), "--ready-fd", "77"});
    EXPECT_EQ(process->WaitForExit(), 1);
    EXPECT_EQ(process->StandardError(),
              "krt9-desktop: cannot report that it is ready: Bad file descriptor\n");
    EXPECT_EQ(FilesLeft(), 0u);
}

TEST_F(Process, ComplainsOnceOfALogThatCannotBeWritten) {
    const auto process = Launch({Scene(json::object()), "--log", "/dev/full"});
    ASSERT_TRUE(process->WaitForOutput("ready\n"));
    SocketClient client;
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(client.Run({{"command", "plug"}, {"device", {{"name", "x"}}}}));
    }
    process->Signal(SIGINT);
    EXPECT_EQ(process->WaitForExit(), 1);
    EXPECT_EQ(process->StandardError(), "krt9-desktop: /dev/full: No space left on device\n");
}

TEST_F(Process, RefusesASessionThatIsNoFolder) {
    const test_support::EnvironmentVariable session("KRT9_SESSION_DIR",
                                                    session_.Path() / "scene.json");
    const auto process = Launch({Scene(json::object())});
    EXPECT_EQ(process->WaitForExit(), 1);
    EXPECT_THAT(process->StandardError(), HasSubstr("scene.json"));
}

TEST_F(Process, ReportsAWrongCommandLine) {
    const auto process = Launch({});
    EXPECT_NE(process->WaitForExit(), 0);
    EXPECT_THAT(process->StandardError(), HasSubstr("SCENE is required"));
}

TEST_F(Process, PlaysTheScriptInRealTimeWhenAsked) {
    const json scene = {
        {"applications", {{{"bundleID", "a"}}}},
        {"script", {{{"at", 0.02}, {"command", "activate"}, {"application", "a"}}}}};
    const auto process = Launch({Scene(scene), "--play"});
    ASSERT_TRUE(process->WaitForOutput("ready\n"));
    SocketClient client;
    Request hello;
    const auto reply = client.Ask(hello);
    ASSERT_TRUE(reply && reply->session);
    if (!reply->session->frontApplication) {
        const auto notification = client.Receive();
        ASSERT_TRUE(notification);
        EXPECT_EQ(notification->kind, desktop_link::FrameKind::notification);
    }
}

}  // namespace

}  // namespace desktop
