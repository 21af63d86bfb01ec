#include "tests/adversary/AttackedOperation.h"

#include "tests/adversary/SessionMoments.h"

namespace adversary {

namespace {

constexpr double kMessagingTimeout = 6.0;  // seconds, the session's

// What arrives of the reply.
std::optional<desktop_link::Reply> Travelled(const std::optional<desktop_link::Reply>& reply) {
    if (!reply) {
        return reply;
    }
    const auto bytes = desktop_link::Encode(*reply);
    return desktop_link::DecodeReply(bytes.data(), bytes.size());
}

}  // namespace

void AttackedOperation::Begin() {
    Remember();
    driver_.Desktop().Load(operation_.scene);
    driver_.Expected().mainWindow = driver_.Desktop()->Find("", "/1");
    sceneIsLost_ = false;
}

// What the driver remembers is as at the beginning.
void AttackedOperation::Remember() {
    const ElementReference mainWindow = driver_.Expected().mainWindow;
    if (operation_.clipSource) {
        driver_.LookForClipNameIn(*operation_.clipSource);
    }
    driver_.Forget(operation_.version);
    driver_.Expected().mainWindow = mainWindow;
    if (operation_.clipSource) {
        driver_.ObserveBoth();
    }
    driver_.Desktop().Restart();
}

void AttackedOperation::LoseTrack() {
    driver_.LoseTrack();
    sceneIsLost_ = true;
}

std::string AttackedOperation::RunAndCompare() {
    const platform_testing::ObjectCounts before = platform_testing::LiveObjects();
    const Outcome outcome = operation_.run(driver_);
    const platform_testing::ObjectCounts growth =
        platform_testing::Growth(before, platform_testing::LiveObjects());
    Replay replay(driver_.Desktop().Exchanges());
    const Outcome expected = operation_.expect(driver_.Expected(), replay);
    std::string problem;
    if (!(outcome == expected)) {
        problem +=
            "\n  it gave " + Description(outcome) + "\n  instead of " + Description(expected);
    }
    if (const std::string deviation = replay.Deviation(); !deviation.empty()) {
        problem += "\n  " + deviation;
    }
    for (const Exchange& exchange : driver_.Desktop().Exchanges()) {
        if (exchange.timeout > kMessagingTimeout) {
            problem += "\n  a call was ready to wait " + std::to_string(exchange.timeout) + " s";
        }
    }
    if (!operation_.keepsWhatItFinds) {
        for (const auto& [name, count] : growth) {
            problem += "\n  left over: " + std::to_string(count) + " " + name;
        }
    }
    return problem + ProblemOfState();
}

// What ticks remember must be what they are to remember.
std::string AttackedOperation::ProblemOfState() {
    if (!operation_.clipSource) {
        return {};
    }
    CVEK_UserSpaceDriver& driver = driver_.Driver();
    const ExpectedDriver& expected = driver_.Expected();
    std::string problem;
    const auto compare = [&problem](const char* field, const auto& value, const auto& wanted) {
        if (!(value == wanted)) {
            problem += std::string("\n  ") + field + " is wrong";
        }
    };
    compare("lastClipRow", DriverInspector::LastClipRow(driver), expected.lastRow);
    compare("lastClipName", std::string(DriverInspector::LastClipName(driver)),
            expected.lastClipName);
    compare("timelineIndexVisible", DriverInspector::TimelineIndexVisible(driver),
            expected.indexVisible);
    compare("timelineIndexChanged", DriverInspector::TimelineIndexChanged(driver),
            expected.indexChanged);
    compare("observeClipSelection", DriverInspector::ObserveClipSelection(driver), true);
    compare("observeTimelineTimecode", DriverInspector::ObserveTimelineTimecode(driver), true);
    return problem;
}

std::string AttackedOperation::RunAgain(const char* when) {
    driver_.Desktop().Restart();
    const std::string problem = RunAndCompare();
    return problem.empty() ? problem : std::string("\n  ") + when + ":" + problem;
}

std::string AttackedOperation::RunClean() {
    Begin();
    const SessionMoments moments(driver_.Desktop(), nullptr);
    std::string problem = RunAndCompare();
    exchanges_ = driver_.Desktop().Exchanges();
    moments_ = moments.Count();
    return problem;
}

std::string AttackedOperation::RunWith(const Event& event, const std::string& control,
                                       unsigned moment) {
    Begin();
    std::string problem;
    {
        const SessionMoments moments(driver_.Desktop(), [&](unsigned now) {
            if (now == moment) {
                event.happen(driver_.Desktop(), control);
            }
        });
        problem = RunAndCompare();
    }
    sceneIsLost_ = true;
    // The driver's run loop runs, and the same is asked again.
    driver_.Desktop().DeliverNotifications();
    driver_.Expected().front = event.frontAfterwards;
    problem += RunAgain("afterwards");
    if (!event.end.empty()) {
        driver_.Desktop().RunUnnoticed(event.end);
        problem += RunAgain("in the end");
    }
    return problem;
}

std::string AttackedOperation::RunWithReply(std::size_t index, const Falsify& falsify) {
    if (sceneIsLost_) {
        Begin();
    } else {
        Remember();
    }
    driver_.Desktop().onReply = [&](std::size_t number, Exchange& exchange) {
        if (number == index) {
            falsify(exchange.reply);
            exchange.reply = Travelled(exchange.reply);
        }
    };
    std::string problem = RunAndCompare();
    if (operation_.clipSource) {
        problem += RunAgain("afterwards");  // ticks remember
    }
    return problem;
}

}  // namespace adversary
