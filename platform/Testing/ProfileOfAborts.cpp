// Only in builds that measure coverage: a process that stops with abort() would lose its profile,
// and with it every branch that a death test reaches.
#include <csignal>

extern "C" int __llvm_profile_write_file(void);

namespace {

[[maybe_unused]] const auto previousHandler =
    std::signal(SIGABRT, [](int) { __llvm_profile_write_file(); });

}  // namespace
