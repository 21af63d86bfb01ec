// Waiting for descriptors, by the system's clock and by the test clock.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <thread>
#include <vector>

#include "platform/CoreFoundation/RunLoop/RunLoopPoller.h"
#include "platform/LocalSocket/Socket.h"
#include "platform/Testing/TestClock.h"
#include "tests/support/WithoutDescriptors.h"
#include "tests/unit/CoreFoundation/RunLoop/Scene.h"

namespace run_loop_test {
namespace {

using run_loop::Instant;
using run_loop::kNever;
using run_loop::Now;

constexpr Instant kMillisecond = 1'000'000;

// One end of a connection whose other end has not read for long.
class FullSocket {
  public:
    FullSocket() {
        int ends[2];
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends), 0);
        near_ = local_socket::Descriptor(ends[0]);
        far_ = local_socket::Descriptor(ends[1]);
        const std::vector<char> bytes(10'000);
        while (write(near_.get(), bytes.data(), bytes.size()) > 0) {
        }
    }

    int Near() const { return near_.get(); }

    void Drain() const {
        std::vector<char> bytes(10'000);
        while (read(far_.get(), bytes.data(), bytes.size()) > 0) {
        }
    }

  private:
    local_socket::Descriptor near_;
    local_socket::Descriptor far_;
};

class WaitUntilWritable : public testing::Test {
  protected:
    // Whether the socket could be written to before the deadline, which a thread makes it a little
    // later.
    bool WhileAThreadDrains(Instant deadline) const {
        std::thread other([this] {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
            socket_.Drain();
        });
        const bool writable = run_loop::WaitUntilWritable(socket_.Near(), deadline);
        other.join();
        return writable;
    }

    FullSocket socket_;
};

TEST_F(WaitUntilWritable, EndsWhenThePeerReads) {
    EXPECT_TRUE(WhileAThreadDrains(Now() + 20'000 * kMillisecond));
    EXPECT_TRUE(run_loop::WaitUntilWritable(socket_.Near(), Now())) << "it is so already";
}

TEST_F(WaitUntilWritable, MayHaveNoLimit) {
    EXPECT_TRUE(WhileAThreadDrains(kNever));
}

TEST_F(WaitUntilWritable, ReallyWaitsWithoutALimitUnderTheTestClock) {
    const platform_testing::TestClock clock;
    EXPECT_TRUE(WhileAThreadDrains(kNever));
    EXPECT_EQ(Now(), 0);
}

TEST_F(WaitUntilWritable, MovesTheTestClockToItsDeadline) {
    const platform_testing::TestClock clock;
    EXPECT_FALSE(run_loop::WaitUntilWritable(socket_.Near(), 7));
    EXPECT_EQ(Now(), 7);
    socket_.Drain();
    EXPECT_TRUE(run_loop::WaitUntilWritable(socket_.Near(), 9));
    EXPECT_EQ(Now(), 7);
}

volatile std::sig_atomic_t alarms = 0;

TEST_F(WaitUntilWritable, IsNotCutShortBySignals) {
    struct sigaction action {};
    action.sa_handler = [](int) { alarms = alarms + 1; };
    struct sigaction before {};
    sigaction(SIGALRM, &action, &before);
    const itimerval often{{0, 5'000}, {0, 5'000}};
    setitimer(ITIMER_REAL, &often, nullptr);
    const Instant deadline = Now() + 60 * kMillisecond;
    EXPECT_FALSE(run_loop::WaitUntilWritable(socket_.Near(), deadline));
    EXPECT_GE(Now(), deadline);
    const itimerval never{};
    setitimer(ITIMER_REAL, &never, nullptr);
    sigaction(SIGALRM, &before, nullptr);
    EXPECT_GT(alarms, 0);
}

// A mode that is made while the process is out of descriptors cannot watch any.
TEST(Poller, TimersFireInAModeThatWasMadeWithoutADescriptor) {
    Scene scene(Scene::Clock::real);
    std::vector<double> times;
    {
        const test_support::WithoutDescriptors none;
        scene.AddTimer(
            0.01, 0, [&] { times.push_back(scene.Time()); }, scene.Custom());
    }
    EXPECT_EQ(scene.Run(10, false, scene.Custom()), kCFRunLoopRunFinished);
    ASSERT_EQ(times.size(), 1U);
    EXPECT_GE(times[0], 0.01);
}

}  // namespace
}  // namespace run_loop_test
