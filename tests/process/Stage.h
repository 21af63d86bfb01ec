// The real processes of one session: desktop, driver and companion.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"
#include "tests/support/SessionFixture.h"

namespace test_support {

class Stage {
  public:
    // Ready when it returns; the scene is a file of scenes/ or the JSON text itself. Its log is its
    // output.
    void StartDesktop(const std::string& scene);

    // Returns once the driver's constructor has finished.
    void StartDriver(const std::map<std::string, std::string>& environment = {},
                     const std::string& path = DriverPath());

    // Runs krt9ctl to its end.
    ProcessResult Companion(const std::vector<std::string>& arguments);

    // Interrupts the driver; its exit status.
    int InterruptDriver();

    ChildProcess& Driver() { return *driver_; }
    ChildProcess& Desktop() { return *desktop_; }
    const SessionFixture& Session() const { return session_; }

    static std::string DriverPath();

    // The driver with a time-out of half a second for applications that hang, instead of six.
    static std::string ImpatientDriverPath();

    static std::string CompanionPath();

    // For the leak sanitizer, where the driver is built with it: what the driver keeps on purpose.
    static std::map<std::string, std::string> DriverEnvironment();

  private:
    SessionFixture session_;
    std::unique_ptr<ChildProcess> desktop_;
    std::unique_ptr<ChildProcess> driver_;
};

}  // namespace test_support
