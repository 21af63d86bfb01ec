// Desktop, driver and companion as processes of one session, each of which a test may kill, stop
// and start again at any time.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>

#include "tests/process/Stage.h"
#include "tests/support/ChildProcess.h"

namespace test_support {

enum class Role { desktop, driver, companion };
inline constexpr std::array kRoles = {Role::desktop, Role::driver, Role::companion};

const char* Name(Role role);

class Trio {
  public:
    // All three run, started in the order of kRoles' last to first but for the desktop, which is
    // first: the companion's port must be there when the driver looks for it.
    Trio();

    void Start(Role role);
    void Kill(Role role);
    void Stop(Role role);      // SIGSTOP: it lives, but does nothing
    void Continue(Role role);  // SIGCONT
    ChildProcess& Process(Role role);

    // The driver answers a request that does not need the desktop.
    static bool DriverAnswers();

    // The driver follows the editor on the desktop: it answers with what is shown there. Waits
    // until it does; false after ten seconds.
    bool DriverSeesTheEditor();

    // The driver is told to follow the timecode, the playhead moves, and the companion is notified.
    bool CompanionHears(const std::string& timecode);

    // The companion that runs now was there when the driver that runs now started: the driver looks
    // for its port only then.
    bool ConnectedByOrder() const { return companionStart_ < driverStart_; }

    const SessionFixture& Session() const { return session_; }

  private:
    ProcessResult Control(const std::vector<std::string>& arguments);

    SessionFixture session_;
    std::string scene_;  // the file
    std::array<std::unique_ptr<ChildProcess>, kRoles.size()> processes_;
    int starts_ = 0;
    int companionStart_ = 0;
    int driverStart_ = 0;
};

}  // namespace test_support
