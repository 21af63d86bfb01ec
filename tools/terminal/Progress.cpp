#include "tools/terminal/Progress.h"

#include <fmt/format.h>
#include <pthread.h>

#include <chrono>
#include <csignal>
#include <utility>

namespace terminal {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kSilence{2};
constexpr std::chrono::milliseconds kRefresh{250};

// Signals are handled by the thread that does the work. Restores the caller's mask.
class SignalsBlocked {
  public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

  private:
    sigset_t before_{};
};

}  // namespace

Progress::Progress(std::ostream& stream, bool isTerminal, std::string program)
    : stream_(stream), isTerminal_(isTerminal), program_(std::move(program)) {}

Progress::~Progress() {
    if (!thread_.joinable()) {
        return;
    }
    {
        const std::lock_guard lock(mutex_);
        isDone_ = true;
    }
    wake_.notify_all();
    thread_.join();
    Erase();
}

void Progress::Now(const std::string& activity) {
    if (!isTerminal_) {
        return;
    }
    const std::lock_guard lock(mutex_);
    activity_ = activity;
    if (!thread_.joinable()) {
        const SignalsBlocked blocked;
        thread_ = std::thread([this] { Run(); });
    }
}

void Progress::Clear() {
    const std::lock_guard lock(mutex_);
    Erase();
}

void Progress::Erase() {
    if (isShown_) {
        stream_ << "\r\x1B[K" << std::flush;
        isShown_ = false;
    }
}

void Progress::Run() {
    std::unique_lock lock(mutex_);
    const auto start = Clock::now();
    auto due = start + kSilence;
    while (!wake_.wait_until(lock, due, [this] { return isDone_; })) {
        const auto seconds =
            std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - start).count();
        stream_ << fmt::format("\r\x1B[K{}: {} ({} s)", program_, activity_, seconds) << std::flush;
        isShown_ = true;
        due = Clock::now() + kRefresh;
    }
}

}  // namespace terminal
