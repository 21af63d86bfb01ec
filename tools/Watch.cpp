// The verb that replaces the companion: it owns its port and prints what the driver sends to it.
#include <CoreFoundation/CoreFoundation.h>
#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "VEKCommon/MessageCodes.h"
#include "VEKCommon/Names.h"
#include "companion/KRT9Companion.h"
#include "tools/Arguments.h"
#include "tools/CompanionMessage.h"
#include "tools/Grammar.h"
#include "tools/Interruption.h"
#include "tools/Run.h"
#include "tools/Session.h"
#include "tools/doctor/Ports.h"

namespace krt9ctl {

namespace {

using Clock = std::chrono::steady_clock;

// A signal handler may not stop a run loop, and a closed pipe does not wake it; so the loop wakes
// this often to check for both.
constexpr double kLongestNap = 0.2;  // seconds

class Watch {
  public:
    Watch(Output& output, ControllerStatus status, std::optional<std::int64_t> count)
        : output_(output), status_(status), remaining_(count) {}

    ExitCode Run(std::optional<double> seconds);

  private:
    void Receive(const krt9::Message& message);
    void Listen(Clock::time_point end);

    bool IsDone() const {
        return (remaining_ && *remaining_ <= 0) || Interruption::Raised() != ExitCode::ok ||
               output_.Status() != ExitCode::ok;
    }

    Output& output_;
    ControllerStatus status_;
    std::optional<std::int64_t> remaining_;  // messages; none: no limit
};

// Messages after the last one to be printed still get their reply.
void Watch::Receive(const krt9::Message& received) {
    if (!remaining_ || *remaining_ > 0) {
        CompanionMessage message{
            received.code, received.body, std::chrono::system_clock::now(), {}};
        if (received.code == kStus) {
            message.answer = status_;
        }
        output_.Result(MessageObject(message), DescribeMessage(message));
        remaining_ = remaining_ ? std::optional(*remaining_ - 1) : std::nullopt;
    }
    if (IsDone()) {
        CFRunLoopStop(CFRunLoopGetCurrent());
    }
}

void Watch::Listen(Clock::time_point end) {
    while (!IsDone() && Clock::now() < end) {
        const std::chrono::duration<double> left = end - Clock::now();
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, std::clamp(left.count(), 0.0, kLongestNap),
                           false);
        output_.NoticeClosedPipe();
    }
}

ExitCode Watch::Run(std::optional<double> seconds) {
    CheckSession();
    const Interruption interruption;
    const doctor::PortFacts driver = doctor::LookAtPort(kDriverPortName);
    const auto port = krt9::CompanionPort::Open(
        status_, [this](const krt9::Message& message) { Receive(message); });
    if (!port) {
        output_.Problem(ExitCode::nameTaken,
                        "the port VEK_KRT9 is taken: the companion or another watch runs");
        return ExitCode::nameTaken;
    }
    output_.Remark("watching the companion's port VEK_KRT9");
    if (driver.isThere) {
        output_.Remark(fmt::format(
            "the driver was there first: it looks for this port only when it starts, so that it "
            "sends no messages here until it is started again: {}",
            DriverRestartCommand(driver.owner)));
    }
    const auto forever = Clock::time_point::max();
    Listen(seconds ? Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                        std::chrono::duration<double>(*seconds))
                   : forever);
    return ExitCode::ok;
}

ExitCode ActWatch(const Arguments& arguments, Context& context) {
    const ControllerStatus usual;
    const ControllerStatus status{
        static_cast<std::uint32_t>(arguments.NumberOr("--units", usual.units)),
        static_cast<std::uint32_t>(arguments.NumberOr("--channels", usual.channels))};
    const auto count = arguments.Has("--count")
                           ? std::optional<std::int64_t>(arguments.Number("--count"))
                           : std::nullopt;
    const auto seconds = arguments.Has("--for")
                             ? std::optional<double>(arguments.SecondsOr("--for", 0))
                             : std::nullopt;
    return Watch(context.output, status, count).Run(seconds);
}

}  // namespace

std::vector<Verb> WatchVerbs() {
    return {
        {.name = "watch",
         .requests = "",
         .summary = "act as the companion: print the driver's messages and answer its queries",
         .detail =
             "Runs until SIGINT, SIGTERM or SIGHUP (exit code 0), until nobody reads its "
             "output, or to the limit of --count or --for. Start it before the driver, which looks "
             "for the companion's port only once, when it "
             "starts. The driver keeps the low 16 bits of --units and --channels.",
         .example = "krt9ctl watch --units 2 --channels 16",
         .parameters = {{.name = "--units",
                         .kind = ValueKind::number,
                         .help = "units of the controller (default 1)",
                         .placeholder = "N"},
                        {.name = "--channels",
                         .kind = ValueKind::number,
                         .help = "channels of the controller (default 8)",
                         .placeholder = "N"},
                        {.name = "--count",
                         .kind = ValueKind::number,
                         .help = "end after N messages",
                         .placeholder = "N",
                         .smallest = 1},
                        {.name = "--for",
                         .kind = ValueKind::seconds,
                         .help = "end after this time",
                         .placeholder = "SECONDS"}},
         .work = ActWatch},
    };
}

}  // namespace krt9ctl
