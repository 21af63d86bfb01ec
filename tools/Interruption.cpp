#include "tools/Interruption.h"

#include <sys/select.h>

#include <cmath>
#include <csignal>

namespace krt9ctl {

namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t raised = 0;

extern "C" void RaiseFlag(int signal) {
    raised = raised == 0 ? signal : raised;
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
}

// The signals are delivered while it waits and not just before, when they would go unnoticed.
// Returns what pselect returns.
int Wait(int descriptor, const timespec* longest) {
    sigset_t held;
    sigset_t before;
    sigemptyset(&held);
    for (const int signal : kSignals) {
        sigaddset(&held, signal);
    }
    pthread_sigmask(SIG_BLOCK, &held, &before);
    int result = -1;
    if (raised == 0) {
        fd_set readable;
        FD_ZERO(&readable);
        if (descriptor >= 0) {
            FD_SET(descriptor, &readable);
        }
        result = pselect(descriptor + 1, &readable, nullptr, nullptr, longest, &before);
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return result;
}

bool StaysIgnored(int signal) {
    struct sigaction current = {};
    sigaction(signal, nullptr, &current);
    return signal == SIGHUP && current.sa_handler == SIG_IGN;
}

}  // namespace

Interruption::Interruption() {
    raised = 0;
    struct sigaction action = {};
    action.sa_handler = RaiseFlag;
    for (const int signal : kSignals) {
        if (!StaysIgnored(signal)) {
            sigaction(signal, &action, nullptr);
        }
    }
}

Interruption::~Interruption() {
    for (const int signal : kSignals) {
        if (!StaysIgnored(signal)) {
            std::signal(signal, SIG_DFL);
        }
    }
}

void Interruption::Pause(double seconds) {
    const double whole = std::floor(seconds);
    const timespec longest{static_cast<time_t>(whole), static_cast<long>((seconds - whole) * 1e9)};
    Wait(-1, &longest);
}

bool Interruption::AwaitInput(int descriptor) {
    while (raised == 0) {
        if (Wait(descriptor, nullptr) > 0) {
            return true;
        }
    }
    return false;
}

ExitCode Interruption::Raised() {
    switch (raised) {
        case SIGINT:
            return ExitCode::interrupted;
        case SIGTERM:
            return ExitCode::terminated;
        case SIGHUP:
            return ExitCode::hungUp;
        default:
            return ExitCode::ok;
    }
}

}  // namespace krt9ctl
