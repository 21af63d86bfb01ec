#include "platform/CoreFoundation/RunLoop/RunLoopPoller.h"

#include <poll.h>
#include <sys/epoll.h>

#include <algorithm>
#include <ctime>

namespace run_loop {
namespace {

// A span of time for the kernel: no limit for kNever.
class Span {
  public:
    explicit Span(std::int64_t nanoseconds) : isLimited_(nanoseconds != kNever) {
        nanoseconds = std::max(nanoseconds, std::int64_t{0});
        time_.tv_sec = nanoseconds / 1'000'000'000;
        time_.tv_nsec = nanoseconds % 1'000'000'000;
    }
    const timespec* Get() const { return isLimited_ ? &time_ : nullptr; }

  private:
    bool isLimited_;
    timespec time_{};
};

}  // namespace

Poller::Poller() : epoll_(epoll_create1(EPOLL_CLOEXEC)) {}

void Poller::Add(int descriptor, std::uint32_t events, std::uint64_t token) {
    epoll_event event{.events = events, .data = {.u64 = token}};
    epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, descriptor, &event);
}

void Poller::Change(int descriptor, std::uint32_t events, std::uint64_t token) {
    epoll_event event{.events = events, .data = {.u64 = token}};
    epoll_ctl(epoll_.get(), EPOLL_CTL_MOD, descriptor, &event);
}

void Poller::Remove(int descriptor) {
    epoll_ctl(epoll_.get(), EPOLL_CTL_DEL, descriptor, nullptr);
}

std::optional<Poller::Readiness> Poller::Wait(std::int64_t longest) {
    const Span span(longest);
    if (!epoll_) {
        // The process had no descriptor left for this mode: its timers work nevertheless.
        ppoll(nullptr, 0, span.Get(), nullptr);
        return std::nullopt;
    }
    epoll_event event{};
    if (epoll_pwait2(epoll_.get(), &event, 1, span.Get(), nullptr) == 1) {
        return Readiness{event.data.u64, event.events};
    }
    return std::nullopt;
}

bool WaitUntilWritable(int socket, Instant deadline) {
    for (;;) {
        pollfd wanted{socket, POLLOUT, 0};
        const bool standsStill = TestClockInstalled() && deadline != kNever;
        const Span span(standsStill ? 0 : deadline == kNever ? kNever : deadline - Now());
        if (ppoll(&wanted, 1, span.Get(), nullptr) == 1) {
            return true;
        }
        if (standsStill) {
            AdvanceTestClockTo(deadline);
        }
        if (Now() >= deadline) {
            return false;
        }
    }
}

void Sleep(Instant until, Instant last) {
    if (TestClockInstalled() && last != kNever) {
        AdvanceTestClockTo(last);
        return;
    }
    const Span span(until - Now());
    ppoll(nullptr, 0, span.Get(), nullptr);
}

}  // namespace run_loop
