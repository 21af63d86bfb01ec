// Checks of the driver's process: whether it replies, whether it is the only one, its version.
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <chrono>

#include "VEKCommon/MessageCodes.h"
#include "tools/BundleVersion.h"
#include "tools/Session.h"
#include "tools/Version.h"
#include "tools/doctor/Examination.h"

namespace krt9ctl::doctor {

namespace {

constexpr std::string_view kDriver = "driver";
constexpr std::string_view kSecond = "second-driver";
constexpr std::string_view kVersions = "versions";

std::string CommandAfter(ExitCode code, std::optional<pid_t> pid) {
    switch (code) {
        case ExitCode::timeOut:  // it waits up to 6 seconds for an application that hangs
            return "krt9ctl ping --timeout 10";
        case ExitCode::noDriver:
            return DriverStartCommand();
        default:
            return DriverRestartCommand(pid);
    }
}

}  // namespace

Finding CheckDriver(Facts& facts, Client& client) {
    const auto start = std::chrono::steady_clock::now();
    const Answer answer = client.Send({kJPth, {}});
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    const DeliveryRow& delivery = DeliveryOf(answer.status);
    facts.driverReplies = delivery.code == ExitCode::ok;
    const auto pid = facts.driverPort.owner;
    Json details = Json::object();
    if (pid) {
        details["pid"] = *pid;
    }
    if (delivery.code == ExitCode::noDriver) {
        return Failing(kDriver, delivery.code, fmt::format("no driver runs in {}", SessionName()),
                       DriverStartCommand(), details);
    }
    const std::string who = pid ? fmt::format(" (pid {})", *pid) : "";
    if (!facts.driverReplies) {
        return Failing(kDriver, delivery.code, std::string(delivery.sentence) + who,
                       CommandAfter(delivery.code, pid), details);
    }
    return Fine(kDriver, fmt::format("it replied after {:.2f} ms{}", time.count(), who), details);
}

// Without the port's owner it is not known which of several processes is the idle one.
Finding CheckSecondDriver(const Facts& facts) {
    std::vector<pid_t> others;
    for (const DriverProcess& driver : facts.drivers) {
        if (driver.pid != facts.driverPort.owner) {
            others.push_back(driver.pid);
        }
    }
    if (facts.drivers.size() <= 1) {
        return Fine(kSecond, facts.drivers.empty() ? "there is none" : "there is no other one");
    }
    const Json details{{"pids", others}};
    if (facts.driverPort.owner) {
        return Failing(
            kSecond, ExitCode::secondDriver,
            fmt::format("another driver idles without a port: pid {}", fmt::join(others, ", ")),
            fmt::format("kill -INT {}", fmt::join(others, " ")), details);
    }
    return Failing(kSecond, ExitCode::secondDriver,
                   fmt::format("{} drivers run, of which all but one idle: pid {}", others.size(),
                               fmt::join(others, ", ")),
                   DriverRestartCommand(std::nullopt), details);
}

Finding CheckVersions(const Facts& facts) {
    const auto driver = facts.Driver();
    if (!driver) {
        return Unknown(kVersions, "it is not known which process is the driver",
                       {{"krt9ctl", kVersion}});
    }
    const auto version = VersionOfBundle(driver->bundle);
    if (!version) {
        return Unknown(kVersions,
                       fmt::format("the driver's bundle {} has no version",
                                   driver->bundle.empty() ? "(none)" : driver->bundle),
                       {{"krt9ctl", kVersion}});
    }
    const Json details{{"driver", *version}, {"krt9ctl", kVersion}};
    if (*version != kVersion) {
        return Failing(kVersions, ExitCode::versions,
                       fmt::format("the driver is version {}, krt9ctl {}", *version, kVersion),
                       DriverRestartCommand(driver->pid), details);
    }
    return Fine(kVersions, fmt::format("driver and krt9ctl are version {}", kVersion), details);
}

}  // namespace krt9ctl::doctor
