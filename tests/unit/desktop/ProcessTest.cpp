// krt9-desktop as a process.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>

#include "tests/support/EnvironmentVariable.h"
#include "tests/support/Paths.h"
#include "tests/support/SessionFixture.h"
#include "tests/unit/desktop/SocketClient.h"

namespace desktop {

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class DesktopProcess {
  public:
    explicit DesktopProcess(std::vector<std::string> arguments) {
        int output[2];
        EXPECT_EQ(pipe2(output, O_CLOEXEC), 0);
        pid_ = fork();
        if (pid_ == 0) {
            dup2(output[1], STDOUT_FILENO);
            dup2(output[1], STDERR_FILENO);
            std::vector<char*> pointers;
            arguments.insert(arguments.begin(), KRT9_BINARIES "/krt9-desktop");
            for (std::string& argument : arguments) {
                pointers.push_back(argument.data());
            }
            pointers.push_back(nullptr);
            execv(pointers[0], pointers.data());
            _exit(127);
        }
        close(output[1]);
        output_ = local_socket::Descriptor(output[0]);
    }
    // Ends in order if it can: a killed process leaves no record of what it reached.
    ~DesktopProcess() {
        for (int tenths = 0; pid_ > 0 && !Ended(); ++tenths) {
            kill(pid_, tenths < 50 ? SIGINT : SIGKILL);
            usleep(tenths == 0 ? 1000 : 100000);
        }
    }
    DesktopProcess(const DesktopProcess&) = delete;
    DesktopProcess& operator=(const DesktopProcess&) = delete;

    // Its next line of output; empty at the end.
    std::string Line() const {
        std::string line;
        for (char c = 0; read(output_.get(), &c, 1) == 1 && c != '\n';) {
            line += c;
        }
        return line;
    }
    void Signal(int signal) const { kill(pid_, signal); }

    // Its exit status, or minus the signal that ended it.
    int Wait() {
        int status = 0;
        waitpid(pid_, &status, 0);
        pid_ = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

  private:
    bool Ended() const { return waitpid(pid_, nullptr, WNOHANG) == pid_; }

    pid_t pid_ = 0;
    local_socket::Descriptor output_;
};

class Process : public testing::Test {
  protected:
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
        DesktopProcess process({std::string(KRT9_SCENES) + "/editor-10.4.6.json"});
        ASSERT_EQ(process.Line(), "ready");
        EXPECT_GE(FilesLeft(), 2u) << "socket and bundles";
        process.Signal(signal);
        EXPECT_EQ(process.Wait(), 0);
        EXPECT_EQ(FilesLeft(), 0u) << "after signal " << signal;
    }
}

TEST_F(Process, EndsOnTheCommandStop) {
    DesktopProcess process({Scene(json::object())});
    ASSERT_EQ(process.Line(), "ready");
    SocketClient client;
    EXPECT_TRUE(client.Run({{"command", "stop"}}));
    EXPECT_EQ(process.Wait(), 0);
    EXPECT_EQ(FilesLeft(), 0u);
}

TEST_F(Process, WritesItsLogAtOnce) {
    const std::string log = session_.Path() / "log";
    DesktopProcess process({Scene(json::object()), "--log", log});
    ASSERT_EQ(process.Line(), "ready");
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
    DesktopProcess first({Scene(json::object())});
    ASSERT_EQ(first.Line(), "ready");
    DesktopProcess second({Scene(json::object())});
    EXPECT_EQ(second.Line(), "krt9-desktop: another desktop runs in this session already");
    EXPECT_EQ(second.Wait(), 1);
    EXPECT_TRUE(SocketClient().Run({{"command", "state"}}));
}

TEST_F(Process, TakesTheSessionOverFromOneThatWasKilled) {
    const json scene = {{"applications", {{{"bundleID", "a"}, {"info", json::object()}}}}};
    DesktopProcess killed({Scene(scene)});
    ASSERT_EQ(killed.Line(), "ready");
    killed.Signal(SIGKILL);
    EXPECT_EQ(killed.Wait(), -SIGKILL);
    EXPECT_EQ(FilesLeft(), 2u);
    DesktopProcess next({Scene(scene)});
    ASSERT_EQ(next.Line(), "ready");
    EXPECT_EQ(FilesLeft(), 2u) << "the bundles of the killed one are gone";
    next.Signal(SIGINT);
    EXPECT_EQ(next.Wait(), 0);
    EXPECT_EQ(FilesLeft(), 0u);
}

TEST_F(Process, ReportsBadScenesInOneLine) {
    DesktopProcess missing({session_.Path() / "none.json"});
    EXPECT_THAT(missing.Line(), HasSubstr("none.json: No such file or directory"));
    EXPECT_EQ(missing.Wait(), 1);
    DesktopProcess wrong({Scene({{"front", "x"}})});
    EXPECT_THAT(wrong.Line(), HasSubstr("scene.json: front: no application \"x\""));
    EXPECT_EQ(wrong.Line(), "");
    EXPECT_EQ(wrong.Wait(), 1);
    DesktopProcess folder({session_.Path()});
    EXPECT_THAT(folder.Line(), HasSubstr("Is a directory"));
    EXPECT_EQ(folder.Wait(), 1);
    EXPECT_EQ(FilesLeft(), 0u);
}

TEST_F(Process, SaysReadyOnTheDescriptorThatItIsGiven) {
    DesktopProcess second({Scene(json::object()), "--ready-fd", "2"});
    EXPECT_EQ(second.Line(), "ready") << "the standard error stays open";
    second.Signal(SIGINT);
    EXPECT_EQ(second.Wait(), 0);

    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    DesktopProcess third({Scene(json::object()), "--ready-fd", std::to_string(ends[1])});
    close(ends[1]);
    char text[16] = {};
    EXPECT_EQ(read(ends[0], text, sizeof text), 6);
    EXPECT_STREQ(text, "ready\n");
    EXPECT_EQ(read(ends[0], text, sizeof text), 0) << "the descriptor is closed then";
    close(ends[0]);

    DesktopProcess fourth({Scene(json::object()), "--ready-fd", "77"});
    EXPECT_EQ(fourth.Line(), "krt9-desktop: another desktop runs in this session already");
}

TEST_F(Process, EndsWhenItCannotSayThatItIsReady) {
    DesktopProcess process({Scene(json::object()), "--ready-fd", "77"});
    EXPECT_EQ(process.Line(), "krt9-desktop: cannot report that it is ready: Bad file descriptor");
    EXPECT_EQ(process.Wait(), 1);
    EXPECT_EQ(FilesLeft(), 0u);
}

TEST_F(Process, ComplainsOnceOfALogThatCannotBeWritten) {
    DesktopProcess process({Scene(json::object()), "--log", "/dev/full"});
    ASSERT_EQ(process.Line(), "ready");
    SocketClient client;
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(client.Run({{"command", "plug"}, {"device", {{"name", "x"}}}}));
    }
    process.Signal(SIGINT);
    EXPECT_EQ(process.Line(), "krt9-desktop: /dev/full: No space left on device");
    EXPECT_EQ(process.Line(), "");
    EXPECT_EQ(process.Wait(), 1);
}

TEST_F(Process, RefusesASessionThatIsNoFolder) {
    const test_support::EnvironmentVariable session("KRT9_SESSION_DIR",
                                                    session_.Path() / "scene.json");
    DesktopProcess process({Scene(json::object())});
    EXPECT_THAT(process.Line(), HasSubstr("scene.json"));
    EXPECT_EQ(process.Wait(), 1);
}

TEST_F(Process, ReportsAWrongCommandLine) {
    DesktopProcess process({});
    EXPECT_THAT(process.Line(), HasSubstr("SCENE is required"));
    EXPECT_NE(process.Wait(), 0);
}

TEST_F(Process, PlaysTheScriptInRealTimeWhenAsked) {
    const json scene = {
        {"applications", {{{"bundleID", "a"}}}},
        {"script", {{{"at", 0.02}, {"command", "activate"}, {"application", "a"}}}}};
    DesktopProcess process({Scene(scene), "--play"});
    ASSERT_EQ(process.Line(), "ready");
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
