// A session of its own for a replay: the simulated desktop with a scene, and the real driver. There
// is one source for each system, since only one has a simulated desktop.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "tools/Output.h"

namespace krt9ctl {

// While it exists, this process is in that session. Its end ends both processes and removes every
// file of theirs. One at a time.
class PrivateSession {
  public:
    virtual ~PrivateSession() = default;

    // Returns when the driver replies, or a signal has arrived (Interruption.h). Throws
    // std::runtime_error with one line.
    virtual void StartDriver() = 0;

    // A command of the simulated desktop. Nothing when it does not reply in time.
    virtual std::optional<Json> Ask(const Json& command) = 0;
};

struct PrivateSessionOptions {
    std::string scene;                  // JSON
    std::string language;               // that the user prefers
    std::optional<std::string> driver;  // a program other than the one that lies beside krt9ctl
};

// Null on a system without a simulated desktop. Throws std::runtime_error with one line, also for a
// scene that the desktop refuses.
std::unique_ptr<PrivateSession> OpenPrivateSession(const PrivateSessionOptions& options);

}  // namespace krt9ctl
