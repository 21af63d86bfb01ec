#include "tools/Interruption.h"

#include <csignal>

namespace krt9ctl {

namespace {

volatile std::sig_atomic_t interrupted = 0;

extern "C" void RaiseFlag(int) {
    interrupted = 1;
}

}  // namespace

Interruption::Interruption() {
    interrupted = 0;
    struct sigaction action = {};
    action.sa_handler = RaiseFlag;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

Interruption::~Interruption() {
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
}

bool Interruption::Raised() {
    return interrupted != 0;
}

}  // namespace krt9ctl
