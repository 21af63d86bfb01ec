#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstring>
#include <fstream>
#include <functional>
#include <thread>
#include <vector>

#include "platform/LocalSocket/Socket.h"
#include "platform/LocalSocket/SocketAddress.h"
#include "tests/support/SessionFixture.h"

// Calls of accept4 in this program. The definition takes the place of the system library's.
static int acceptCalls = 0;

extern "C" int accept4(int descriptor, sockaddr* address, socklen_t* length, int flags) {
    ++acceptCalls;
    return static_cast<int>(syscall(SYS_accept4, descriptor, address, length, flags));
}

namespace local_socket {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr uid_t kNobody = 65534;

class ListenerTest : public testing::Test {
  protected:
    static std::optional<Listener> Serve(std::string_view name) {
        bool taken = false;
        std::string problem;
        auto listener = Listener::Create(name, &taken, &problem);
        EXPECT_TRUE(listener) << (taken ? "taken" : problem);
        return listener;
    }

    static bool IsTaken(std::string_view name) {
        bool taken = false;
        EXPECT_FALSE(Listener::Create(name, &taken, nullptr));
        return taken;
    }

    // Neither side makes use of what lies under the name "port".
    void ExpectRefused(const std::string& reason) {
        const std::string expected = (session_.Path() / "port").string() + " " + reason;
        bool taken = true;
        std::string problem;
        EXPECT_FALSE(Listener::Create("port", &taken, &problem));
        EXPECT_FALSE(taken);
        EXPECT_THAT(problem, testing::StartsWith(expected));
        EXPECT_FALSE(Connect("port", &problem));
        EXPECT_THAT(problem, testing::StartsWith(expected));
        EXPECT_THAT(NameProblem("port"), testing::StartsWith(expected));
    }

    // The exit status of a process that ran the work.
    static int InOtherProcess(const std::function<int()>& work) {
        const pid_t child = fork();
        if (child == 0) {
            _exit(work());
        }
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    // Takes all descriptors of this process but `left`.
    static std::vector<Descriptor> TakeDescriptorsBut(std::size_t left) {
        const rlimit limit{64, 64};
        setrlimit(RLIMIT_NOFILE, &limit);
        std::vector<Descriptor> taken;
        while (Descriptor other{open("/dev/null", O_RDONLY)}) {
            taken.push_back(std::move(other));
        }
        taken.resize(taken.size() - left);
        return taken;
    }

    // A process of another user that has a socket and the address of `path`.
    static pid_t StartAsAnotherUser(
        const std::string& path,
        const std::function<void(int socket, const sockaddr_un& address)>& work) {
        const pid_t child = fork();
        if (child != 0) {
            return child;
        }
        if (setgid(kNobody) != 0 || setuid(kNobody) != 0) {
            _exit(3);
        }
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        work(::socket(AF_UNIX, SOCK_STREAM, 0), address);
        _exit(4);
    }

    // A process that serves the name and then waits to be killed.
    static pid_t StartServer(std::string_view name) {
        int ready[2];
        EXPECT_EQ(pipe(ready), 0);
        const pid_t child = fork();
        if (child == 0) {
            const auto listener = Listener::Create(name, nullptr, nullptr);
            const char answer = listener ? 'y' : 'n';
            (void)!write(ready[1], &answer, 1);
            pause();
            _exit(0);
        }
        char answer = 0;
        EXPECT_EQ(read(ready[0], &answer, 1), 1);
        EXPECT_EQ(answer, 'y') << "the other process cannot serve the name";
        close(ready[0]);
        close(ready[1]);
        return child;
    }

    static void Kill(pid_t child) {
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
    }

    test_support::SessionFixture session_;
};

TEST_F(ListenerTest, ConnectsClientAndServer) {
    auto listener = Serve("port");
    ASSERT_TRUE(listener);
    EXPECT_FALSE(listener->Accept()) << "nobody has connected yet";
    const Descriptor client = Connect("port");
    ASSERT_TRUE(client);
    const Descriptor server = listener->Accept();
    ASSERT_TRUE(server);
    ASSERT_EQ(write(client.get(), "hi", 2), 2);
    char buffer[8];
    EXPECT_EQ(read(server.get(), buffer, sizeof buffer), 2);
    EXPECT_FALSE(listener->Accept());
}

TEST_F(ListenerTest, DescriptorsNeitherBlockNorReachOtherPrograms) {
    auto listener = Serve("port");
    const Descriptor client = Connect("port");
    const Descriptor server = listener->Accept();
    for (const int descriptor : {listener->descriptor(), client.get(), server.get()}) {
        EXPECT_NE(fcntl(descriptor, F_GETFL) & O_NONBLOCK, 0);
        EXPECT_NE(fcntl(descriptor, F_GETFD) & FD_CLOEXEC, 0);
    }
}

TEST_F(ListenerTest, NobodyServesAnUnknownName) {
    std::string problem = "unchanged";
    EXPECT_FALSE(Connect("port", &problem));
    EXPECT_EQ(problem, "");
}

TEST_F(ListenerTest, RefusedFolderIsReportedToBothSides) {
    ASSERT_EQ(chmod(session_.Path().c_str(), 0755), 0);
    std::string problem;
    EXPECT_FALSE(Connect("port", &problem));
    EXPECT_THAT(problem, testing::HasSubstr("mode 0755"));
    bool taken = true;
    EXPECT_FALSE(Listener::Create("port", &taken, &problem));
    EXPECT_FALSE(taken);
    EXPECT_THAT(problem, testing::HasSubstr("mode 0755"));
}

TEST_F(ListenerTest, ConnectingLeavesNothingBehind) {
    Connect("port");
    EXPECT_THAT(session_.Files(), IsEmpty());
}

TEST_F(ListenerTest, SocketFileGoesWithTheListener) {
    {
        const auto listener = Serve("port");
        EXPECT_THAT(session_.Files(), ElementsAre("port"));
    }
    EXPECT_THAT(session_.Files(), IsEmpty());
    EXPECT_FALSE(Connect("port"));
}

TEST_F(ListenerTest, AssigningWithdrawsTheOlderListener) {
    auto listener = Serve("older");
    listener = Serve("newer");
    EXPECT_THAT(session_.Files(), ElementsAre("newer"));
    EXPECT_TRUE(Connect("newer"));
}

TEST_F(ListenerTest, AssigningAListenerToItselfLeavesItServing) {
    auto listener = Serve("port");
    Listener& same = *listener;
    *listener = std::move(same);
    EXPECT_TRUE(Connect("port"));
}

TEST_F(ListenerTest, ListenerWhoseFileIsGoneLeavesTheOthersAlone) {
    const auto other = Serve("other");
    {
        const auto listener = Serve("port");
        std::filesystem::remove(session_.Path() / "port");
    }
    EXPECT_THAT(session_.Files(), ElementsAre("other"));
}

TEST_F(ListenerTest, AcceptsNobodyInOneSystemCall) {
    auto listener = Serve("port");
    const int before = acceptCalls;
    EXPECT_FALSE(listener->Accept());
    EXPECT_EQ(acceptCalls - before, 1);
}

TEST_F(ListenerTest, NewOneHasNoProblemWhateverWasReportedBefore) {
    std::string problem = "of another listener";
    bool taken = true;
    EXPECT_TRUE(Listener::Create("port", &taken, &problem));
    EXPECT_EQ(problem, "");
    EXPECT_FALSE(taken);
}

TEST_F(ListenerTest, NameServedInThisProcessIsTaken) {
    const auto listener = Serve("port");
    EXPECT_TRUE(IsTaken("port"));
    EXPECT_TRUE(Connect("port")) << "the first listener was disturbed";
}

TEST_F(ListenerTest, NameServedByAnotherProcessIsTaken) {
    const pid_t server = StartServer("port");
    EXPECT_TRUE(IsTaken("port"));
    Kill(server);
}

TEST_F(ListenerTest, NameServedByAStoppedProcessIsTaken) {
    const pid_t server = StartServer("port");
    kill(server, SIGSTOP);
    waitpid(server, nullptr, WUNTRACED);
    EXPECT_TRUE(IsTaken("port"));
    Kill(server);
}

TEST_F(ListenerTest, NameWhoseBacklogIsFullIsTaken) {
    const Descriptor directory(open(session_.Path().c_str(), O_RDONLY | O_DIRECTORY));
    const Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0));
    const SocketAddress address = AddressInDirectory(directory.get(), "port");
    ASSERT_EQ(bind(socket.get(), address.Get(), address.length), 0);
    ASSERT_EQ(listen(socket.get(), 0), 0);
    std::vector<Descriptor> waiting;
    while (Descriptor client = Connect("port")) {
        waiting.push_back(std::move(client));
    }
    EXPECT_FALSE(waiting.empty());
    EXPECT_TRUE(IsTaken("port"));
}

TEST_F(ListenerTest, NameOfASocketOfAnotherKindIsTaken) {
    const Descriptor directory(open(session_.Path().c_str(), O_RDONLY | O_DIRECTORY));
    const Descriptor socket(::socket(AF_UNIX, SOCK_DGRAM, 0));
    const SocketAddress address = AddressInDirectory(directory.get(), "port");
    ASSERT_EQ(bind(socket.get(), address.Get(), address.length), 0);
    EXPECT_TRUE(IsTaken("port"));
    EXPECT_FALSE(Connect("port"));
    EXPECT_THAT(session_.Files(), ElementsAre("port"));
}

TEST_F(ListenerTest, SocketOfAKilledProcessIsReplaced) {
    Kill(StartServer("port"));
    EXPECT_THAT(session_.Files(), ElementsAre("port")) << "the killed process left nothing to test";
    EXPECT_FALSE(Connect("port"));
    auto listener = Serve("port");
    EXPECT_TRUE(Connect("port"));
}

TEST_F(ListenerTest, UnfinishedSocketOfAKilledProcessIsReplaced) {
    Kill(StartServer("port"));
    std::filesystem::rename(session_.Path() / "port", session_.Path() / "#binding");
    const auto listener = Serve("port");
    EXPECT_THAT(session_.Files(), ElementsAre("port"));
}

TEST_F(ListenerTest, FileThatIsNotItsOwnIsLeftAlone) {
    auto first = Serve("port");
    std::filesystem::remove(session_.Path() / "port");
    auto second = Serve("port");
    first.reset();
    EXPECT_THAT(session_.Files(), ElementsAre("port"));
    EXPECT_TRUE(Connect("port"));
}

TEST_F(ListenerTest, FolderInThePlaceOfTheSocketIsReported) {
    std::filesystem::create_directory(session_.Path() / "port");
    ExpectRefused("is not a socket");
}

TEST_F(ListenerTest, FileInThePlaceOfTheSocketIsReportedAndKept) {
    std::ofstream(session_.Path() / "port") << "text";
    ExpectRefused("is not a socket");
    EXPECT_EQ(std::filesystem::file_size(session_.Path() / "port"), 4U);
}

TEST_F(ListenerTest, LinkInThePlaceOfTheSocketIsReportedAndNotFollowed) {
    const auto served = Serve("served");
    std::filesystem::create_symlink("served", session_.Path() / "port");
    ExpectRefused("is a symbolic link");
    std::filesystem::remove(session_.Path() / "port");
    std::filesystem::create_symlink("nowhere", session_.Path() / "port");
    ExpectRefused("is a symbolic link");
    EXPECT_TRUE(std::filesystem::is_symlink(session_.Path() / "port"));
    EXPECT_FALSE(std::filesystem::exists(session_.Path() / "nowhere"));
}

TEST_F(ListenerTest, SocketOfAnotherUserIsReportedAndKept) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can give a socket to another user";
    }
    Kill(StartServer("port"));
    ASSERT_EQ(chown((session_.Path() / "port").c_str(), kNobody, kNobody), 0);
    ExpectRefused("belongs to user 65534 instead of 0");
    EXPECT_THAT(session_.Files(), ElementsAre("port"));
}

TEST_F(ListenerTest, FileInThePlaceOfAnUnfinishedSocketIsReportedAndKept) {
    std::ofstream(session_.Path() / "#binding") << "text";
    std::string problem;
    EXPECT_FALSE(Listener::Create("port", nullptr, &problem));
    EXPECT_THAT(problem, testing::HasSubstr("#binding is not a socket"));
    EXPECT_THAT(session_.Files(), ElementsAre("#binding"));
}

TEST_F(ListenerTest, AnyBytesNameAPort) {
    const std::string outside = session_.Path().filename().string() + "-outside";
    const std::vector<std::string> names = {"a/b",
                                            "../" + outside,
                                            "..",
                                            ".",
                                            "/",
                                            std::string("a\0b", 3),
                                            std::string("a\0c", 3),
                                            "\xff\xfe\x80",
                                            std::string(128, 'n'),
                                            std::string(255, 'n'),
                                            std::string(255, '/'),
                                            ""};
    std::vector<Listener> listeners;
    for (const auto& name : names) {
        auto listener = Serve(name);
        ASSERT_TRUE(listener) << testing::PrintToString(name);
        listeners.push_back(std::move(*listener));
    }
    EXPECT_EQ(session_.Files().size(), names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        const Descriptor client = Connect(names[i]);
        EXPECT_TRUE(client) << testing::PrintToString(names[i]);
        EXPECT_TRUE(listeners[i].Accept()) << testing::PrintToString(names[i]);
    }
    EXPECT_FALSE(std::filesystem::exists(session_.Path().parent_path() / outside));
}

TEST_F(ListenerTest, FolderOfAnyDepthServes) {
    std::string deep = session_.Path().string();
    while (deep.size() < 300) {
        deep += "/a-folder-on-the-way-down";
    }
    std::filesystem::create_directories(deep);
    setenv("KRT9_SESSION_DIR", (deep + "/krt9").c_str(), 1);
    auto listener = Serve("port");
    EXPECT_TRUE(Connect("port"));
}

TEST_F(ListenerTest, OneOfManyProcessesGetsTheName) {
    Kill(StartServer("port"));  // so that all of them find a socket to replace
    constexpr int kProcesses = 16;
    int start[2];
    int served[2];
    int finish[2];
    ASSERT_EQ(pipe(start), 0);
    ASSERT_EQ(pipe(served), 0);
    ASSERT_EQ(pipe(finish), 0);
    std::vector<pid_t> children;
    for (int i = 0; i < kProcesses; ++i) {
        children.push_back(fork());
        if (children.back() == 0) {
            close(start[1]);
            close(finish[1]);
            char unused = 0;
            (void)!read(start[0], &unused, 1);
            const auto listener = Listener::Create("port", nullptr, nullptr);
            (void)!write(served[1], listener ? "y" : "n", 1);
            (void)!read(finish[0], &unused, 1);
            _exit(0);
        }
    }
    close(start[1]);
    std::string answers(kProcesses, ' ');
    for (auto& answer : answers) {
        ASSERT_EQ(read(served[0], &answer, 1), 1);
    }
    close(finish[1]);
    for (const pid_t child : children) {
        waitpid(child, nullptr, 0);
    }
    EXPECT_EQ(std::count(answers.begin(), answers.end(), 'y'), 1) << answers;
}

TEST_F(ListenerTest, ClientOfAnotherUserIsClosedAtOnce) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can act as another user";
    }
    auto listener = Serve("port");
    // The file modes let other users in, so that only the check of the peer's user is left.
    ASSERT_EQ(chmod(session_.Path().c_str(), 0755), 0);
    ASSERT_EQ(chmod((session_.Path() / "port").c_str(), 0777), 0);
    const std::string path = (session_.Path() / "port").string();
    int connected[2];
    ASSERT_EQ(pipe(connected), 0);
    const pid_t child = StartAsAnotherUser(path, [&](int socket, const sockaddr_un& address) {
        if (connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
            _exit(2);
        }
        (void)!write(connected[1], "c", 1);
        char unused = 0;
        _exit(read(socket, &unused, 1) == 0 ? 0 : 1);
    });
    char unused = 0;
    close(connected[1]);
    ASSERT_EQ(read(connected[0], &unused, 1), 1) << "the other user could not connect";
    EXPECT_FALSE(listener->Accept()) << "a client of another user was let in";
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 0) << "the other user's connection was not closed";
}

TEST_F(ListenerTest, ListenerOfAnotherUserIsNotTrusted) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can act as another user";
    }
    ASSERT_EQ(chmod(session_.Path().c_str(), 0777), 0);
    const std::string path = (session_.Path() / "port").string();
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t child = StartAsAnotherUser(path, [&](int socket, const sockaddr_un& address) {
        const bool serves =
            bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
            listen(socket, 8) == 0;
        (void)!write(ready[1], serves ? "y" : "n", 1);
        pause();
    });
    char answer = 0;
    ASSERT_EQ(read(ready[0], &answer, 1), 1);
    EXPECT_EQ(answer, 'y') << "the other user could not serve the name";
    ASSERT_EQ(chmod(session_.Path().c_str(), 0700), 0);
    EXPECT_FALSE(Connect("port")) << "a listener of another user was trusted";
    Kill(child);
}

// The file belongs to this user, so that only the credentials of the listening process show that
// another user serves it.
TEST_F(ListenerTest, ServerOfAnotherUserIsNotTrustedUnderAFileOfThisOne) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can act as another user";
    }
    const Descriptor directory(open(session_.Path().c_str(), O_RDONLY | O_DIRECTORY));
    const Descriptor socket(::socket(AF_UNIX, SOCK_STREAM, 0));
    const SocketAddress address = AddressInDirectory(directory.get(), "port");
    ASSERT_EQ(bind(socket.get(), address.Get(), address.length), 0);
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t child = fork();
    if (child == 0) {
        const bool serves = setgid(kNobody) == 0 && setuid(kNobody) == 0 &&
                            listen(socket.get(), 8) == 0;  // the kernel records the user
        (void)!write(ready[1], serves ? "y" : "n", 1);
        pause();
    }
    char answer = 0;
    ASSERT_EQ(read(ready[0], &answer, 1), 1);
    EXPECT_EQ(answer, 'y') << "the other user could not serve the name";
    std::string problem;
    EXPECT_FALSE(Connect("port", &problem));
    EXPECT_EQ(problem, (session_.Path() / "port").string() + " is served by another user");
    EXPECT_EQ(NameProblem("port"), "") << "the file itself is as it should be";
    Kill(child);
}

TEST_F(ListenerTest, SignalDuringTheWaitForTheFolderIsNotTheEndOfIt) {
    static std::atomic<bool> handled = false;
    struct sigaction action {};
    struct sigaction before {};
    action.sa_handler = [](int) { handled = true; };  // without SA_RESTART
    sigaction(SIGUSR1, &action, &before);
    const Descriptor folder(open(session_.Path().c_str(), O_RDONLY | O_DIRECTORY));
    ASSERT_EQ(flock(folder.get(), LOCK_EX), 0);
    std::atomic<bool> released = false;
    std::thread other([&, waiting = pthread_self()] {
        constexpr useconds_t kMoment = 20'000;
        usleep(kMoment);
        pthread_kill(waiting, SIGUSR1);
        usleep(kMoment);
        released = true;
        flock(folder.get(), LOCK_UN);
    });
    const auto listener = Serve("port");
    EXPECT_TRUE(released) << "the folder was used while somebody else held it";
    other.join();
    EXPECT_TRUE(handled);
    sigaction(SIGUSR1, &before, nullptr);
}

TEST_F(ListenerTest, WantOfDescriptorsIsReportedAndLeavesNothingBehind) {
    const int result = InOtherProcess([] {
        const std::string want = std::strerror(EMFILE);
        const std::vector<Descriptor> none = TakeDescriptorsBut(0);
        std::string problem;
        if (Connect("port", &problem) || problem.find(want) == std::string::npos) {
            return 1;  // not even the folder can be opened
        }
        bool taken = true;
        if (Listener::Create("port", &taken, &problem) || taken ||
            problem.find(want) == std::string::npos) {
            return 2;
        }
        return 0;
    });
    EXPECT_EQ(result, 0);
    const int withFolder = InOtherProcess([] {
        const std::vector<Descriptor> all = TakeDescriptorsBut(1);  // for the folder
        bool taken = true;
        std::string problem;
        if (Listener::Create("port", &taken, &problem) || taken ||
            problem.find("port cannot be probed: Too many open files") == std::string::npos) {
            return 1;
        }
        return Connect("port", &problem) || !problem.empty() ? 2 : 0;
    });
    EXPECT_EQ(withFolder, 0);
    EXPECT_THAT(session_.Files(), IsEmpty());
}

TEST_F(ListenerTest, NameInARefusedOrMissingFolderHasNoProblemOfItsOwn) {
    std::ofstream(session_.Path() / "port") << "text";
    EXPECT_THAT(NameProblem("port"), testing::HasSubstr("is not a socket"));
    ASSERT_EQ(chmod(session_.Path().c_str(), 0755), 0);
    EXPECT_EQ(NameProblem("port"), "");
    setenv("KRT9_SESSION_DIR", (session_.Path() / "missing").c_str(), 1);
    EXPECT_EQ(NameProblem("port"), "");
}

TEST_F(ListenerTest, ClientsAreClosedWhenNoDescriptorIsLeft) {
    const int result = InOtherProcess([] {
        auto listener = Listener::Create("port", nullptr, nullptr);
        std::vector<Descriptor> clients;
        for (int i = 0; i < 3; ++i) {
            clients.push_back(Connect("port"));
        }
        std::vector<Descriptor> others = TakeDescriptorsBut(0);
        if (listener->Accept()) {
            return 1;
        }
        pollfd waiting{listener->descriptor(), POLLIN, 0};
        if (poll(&waiting, 1, 0) != 0) {
            return 2;  // it would be ready for ever
        }
        char unused = 0;
        for (const auto& client : clients) {
            if (read(client.get(), &unused, 1) != 0) {
                return 3;
            }
        }
        others.clear();
        const Descriptor later = Connect("port");
        return later && listener->Accept() ? 0 : 4;
    });
    EXPECT_EQ(result, 0);
}

}  // namespace
}  // namespace local_socket
