// The real processes of one session: the simulated desktop, the driver, and krt9ctl in the
// companion's place. A test starts, stops and kills each of them as it needs.
#pragma once

#include <array>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"
#include "tests/support/SessionFixture.h"

namespace test_support {

enum class Role { desktop, driver, companion };
inline constexpr std::array kRoles = {Role::desktop, Role::driver, Role::companion};

const char* Name(Role role);

class Stage {
  public:
    // --- Starting: each returns once the process is ready and throws when it does not get so far.
    // The process that had the role before is killed.

    // `scene` is a file of scenes/ or the JSON text itself. The desktop prints its log.
    void StartDesktop(const std::string& scene);

    // Ready: its constructor has finished.
    void StartDriver(const std::map<std::string, std::string>& environment = {},
                     const std::string& path = DriverPath());

    // krt9ctl, which owns the companion's port and prints what arrives.
    void StartCompanion(const std::vector<std::string>& options = {});

    // Starts the process again as it was started last.
    void Restart(Role role);

    // --- Processes that run.

    ChildProcess& Process(Role role) { return *actors_[Index(role)].process; }
    ChildProcess& Desktop() { return Process(Role::desktop); }
    ChildProcess& Driver() { return Process(Role::driver); }
    ChildProcess& Companion() { return Process(Role::companion); }

    void Kill(Role role);      // returns when it has ended
    void Stop(Role role);      // SIGSTOP: it lives, but does nothing
    void Continue(Role role);  // SIGCONT
    int Interrupt(Role role);  // SIGINT; its exit status

    // Whether the process of the first role was started before that of the second.
    bool StartedBefore(Role first, Role second) const;

    const SessionFixture& Session() const { return session_; }

    // --- Further processes in whichever session is set: nothing is waited for.

    static std::unique_ptr<ChildProcess> LaunchDesktop(const std::vector<std::string>& arguments);
    static std::unique_ptr<ChildProcess> LaunchDriver();
    static std::unique_ptr<ChildProcess> LaunchControl(const std::vector<std::string>& arguments);

    // Runs krt9ctl to its end.
    static ProcessResult Control(const std::vector<std::string>& arguments);

    static std::string DesktopPath();
    static std::string DriverPath();
    static std::string ControlPath();

    // The driver with a time-out of half a second for applications that hang, instead of six.
    static std::string ImpatientDriverPath();

    // For the leak sanitizer, where the driver is built with it: what the driver keeps on purpose.
    static std::map<std::string, std::string> DriverEnvironment();

  private:
    struct Actor {
        std::string path;
        std::vector<std::string> arguments;
        std::map<std::string, std::string> environment;
        std::string readyText;
        std::unique_ptr<ChildProcess> process;
        int start = 0;  // its number among all starts
    };

    static std::size_t Index(Role role) { return static_cast<std::size_t>(role); }
    void Start(Role role, Actor actor);

    SessionFixture session_;
    std::array<Actor, kRoles.size()> actors_;
    int starts_ = 0;
};

}  // namespace test_support
