#include "tools/Interruption.h"

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
