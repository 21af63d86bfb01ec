// Whether the driver's messages can reach a companion. The driver looks for the companion's port
// once, when it starts.
#include <fmt/format.h>

#include <cmath>

#include "VEKCommon/Names.h"
#include "tools/Session.h"
#include "tools/doctor/Examination.h"

namespace krt9ctl::doctor {

namespace {

constexpr std::string_view kCompanion = "companion";

// Between making its own port and looking for the companion's, the driver signs in to MIDI. A
// companion's port that was made in the meantime may have been found or not.
constexpr std::chrono::duration<double> kStartOfTheDriver{1};

}  // namespace

Finding CheckCompanion(const Facts& facts) {
    const PortFacts& port = facts.companionPort;
    Json details = Json::object();
    if (port.owner) {
        details["pid"] = *port.owner;
    }
    if (!port.isThere) {
        return Failing(kCompanion, ExitCode::companion,
                       "there is no port " kCompanionPortName
                       ", so that nobody gets the driver's messages",
                       "krt9ctl watch", details);
    }
    const std::string who = port.owner ? fmt::format(" (pid {})", *port.owner) : "";
    if (!facts.driverPort.isThere) {
        return Unknown(kCompanion,
                       "its port is there" + who + ", but no driver that could have found it",
                       details);
    }
    if (!port.since || !facts.driverPort.since) {
        return Unknown(kCompanion,
                       "its port is there, but " + WhyPortsHaveNoAge() +
                           ": a companion that started after the driver gets no "
                           "messages",
                       details);
    }
    const std::chrono::duration<double> after = *port.since - *facts.driverPort.since;
    details["secondsAfterDriver"] = std::round(after.count() * 1000) / 1000;
    if (after.count() < 0) {
        return Fine(
            kCompanion,
            fmt::format("its port{} was there {:.1f} s before the driver", who, -after.count()),
            details);
    }
    if (after < kStartOfTheDriver) {
        return Unknown(kCompanion,
                       fmt::format("its port{} was made {:.1f} s after the driver's own: whether "
                                   "the driver found it is not known",
                                   who, after.count()),
                       details);
    }
    return Failing(kCompanion, ExitCode::companion,
                   fmt::format("its port{} was made {:.1f} s after the driver's own, which looked "
                               "for it only when it started: it gets no messages",
                               who, after.count()),
                   DriverRestartCommand(facts.driverPort.owner), details);
}

}  // namespace krt9ctl::doctor
