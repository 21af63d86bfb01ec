#include "tools/report/Listener.h"

#include <CoreFoundation/CoreFoundation.h>

#include <csignal>
#include <utility>

namespace krt9ctl {

namespace {

constexpr double kLongestNap = 0.1;  // seconds: the end is noticed so often

}  // namespace

std::unique_ptr<Listener> Listener::Open() {
    std::unique_ptr<Listener> listener(new Listener);
    return listener->Start() ? std::move(listener) : nullptr;
}

// A new thread has the signal mask of the one that makes it.
bool Listener::Start() {
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &before);
    thread_ = std::thread([this] { Listen(); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return state_ != State::starts; });
    return state_ == State::listens;
}

// The port is opened, served and closed on one thread.
void Listener::Listen() {
    const auto port = krt9::CompanionPort::Open({}, [this](const krt9::Message& message) {
        const std::lock_guard lock(mutex_);
        heard_.push_back(message);
    });
    {
        const std::lock_guard lock(mutex_);
        state_ = port ? State::listens : State::failed;
    }
    changed_.notify_one();
    while (port && !isOver_) {
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, kLongestNap, false);
    }
}

Listener::~Listener() {
    isOver_ = true;
    thread_.join();
}

std::vector<krt9::Message> Listener::Take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(heard_, {});
}

}  // namespace krt9ctl
