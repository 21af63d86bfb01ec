// Only in builds that measure coverage: a process that stops with abort(), or with the trap that a
// programming error meets, would lose its profile, and with it every branch that a death test
// reaches.
#include <csignal>
#include <initializer_list>

extern "C" int __llvm_profile_write_file(void);

namespace {

// The trap is met again when this returns, and then ends the process.
void WriteProfile(int signal) {
    __llvm_profile_write_file();
    std::signal(signal, SIG_DFL);
}

[[maybe_unused]] const bool installed = [] {
    for (const int signal : {SIGABRT, SIGILL, SIGTRAP}) {
        std::signal(signal, WriteProfile);
    }
    return true;
}();

}  // namespace
