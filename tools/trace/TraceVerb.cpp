// The verb that shows what the driver does, beside the companion.
#include <fmt/format.h>

#include <algorithm>
#include <chrono>

#include "VEKCommon/Names.h"
#include "tools/Arguments.h"
#include "tools/Grammar.h"
#include "tools/Interruption.h"
#include "tools/Run.h"
#include "tools/Session.h"
#include "tools/doctor/Ports.h"
#include "tools/trace/SignpostSource.h"
#include "tools/trace/Timeline.h"

namespace krt9ctl {

namespace {

using Clock = std::chrono::steady_clock;

constexpr double kLongestNap = 0.2;  // seconds: a closed pipe is noticed so often

// "20ms", "1.5s"; a number alone is milliseconds.
double ParseMilliseconds(std::string text) {
    double scale = 1;
    if (text.ends_with("ms")) {
        text.resize(text.size() - 2);
    } else if (text.ends_with("s")) {
        text.pop_back();
        scale = 1000;
    }
    return ParseSeconds("--slow", text) * scale;
}

struct Wanted {
    std::optional<double> slow;  // milliseconds
    bool all = false;
    std::optional<std::int64_t> count;

    bool Includes(const trace::Event& event) const {
        if (event.end.type == trace::Signpost::Type::loss) {
            return true;
        }
        if (slow) {
            return event.Milliseconds().value_or(0) >= *slow;
        }
        return all || !event.IsIdle();
    }
};

bool IsDone(const Wanted& wanted, Output& output) {
    output.NoticeClosedPipe();
    return (wanted.count && *wanted.count <= 0) || Interruption::Raised() != ExitCode::ok ||
           output.Status() != ExitCode::ok;
}

// Says when it traces: the driver has noticed it then, and nothing that begins now is missed.
class Announcement {
  public:
    explicit Announcement(Output& output) : output_(output) {
        output_.Progress("waiting for the driver to notice the trace");
        if (!doctor::LookAtPort(kDriverPortName).isThere) {
            Say(fmt::format("tracing the driver once it is started: none runs in {}",
                            SessionName()));
        }
    }

    void SignpostCame() {
        if (!isMade_) {
            Say("tracing the driver");
        }
    }

    // A driver's ticks have signposts.
    void TimePasses() {
        if (!isMade_ && Clock::now() >= latest_) {
            Say(
                fmt::format("tracing the driver, which has not noticed it within {} seconds: it "
                            "may be waiting for an application that hangs",
                            kPatience.count()));
        }
    }

  private:
    static constexpr std::chrono::seconds kPatience{3};

    void Say(const std::string& sentence) {
        output_.Remark(sentence);
        output_.Progress("tracing");
        isMade_ = true;
    }

    Output& output_;
    bool isMade_ = false;
    Clock::time_point latest_ = Clock::now() + kPatience;
};

void Show(const std::vector<std::string>& lines, trace::Timeline& timeline, Wanted& wanted,
          Announcement& announcement, Output& output) {
    for (const std::string& line : lines) {
        auto signpost = trace::ReadSignpost(line);
        if (signpost) {
            announcement.SignpostCame();
        }
        const auto event = signpost ? timeline.Add(std::move(*signpost)) : std::nullopt;
        if (event && wanted.Includes(*event) && !IsDone(wanted, output)) {
            output.Result(EventObject(*event), DescribeEvent(*event));
            wanted.count = wanted.count ? std::optional(*wanted.count - 1) : std::nullopt;
        }
    }
}

ExitCode ActTrace(const Arguments& arguments, Context& context) {
    Wanted wanted;
    wanted.all = arguments.Has("--all");
    if (arguments.Has("--slow")) {
        wanted.slow = ParseMilliseconds(arguments.Text("--slow"));
    }
    if (arguments.Has("--count")) {
        wanted.count = arguments.Number("--count");
    }
    const Interruption interruption;
    const auto source = trace::OpenSignposts();
    if (!source) {
        context.output.Problem(ExitCode::nameTaken, "another trace runs in this session");
        return ExitCode::nameTaken;
    }
    Announcement announcement(context.output);
    const auto end =
        arguments.Has("--for")
            ? Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                 std::chrono::duration<double>(arguments.SecondsOr("--for", 0)))
            : Clock::time_point::max();
    trace::Timeline timeline;
    while (!IsDone(wanted, context.output) && Clock::now() < end && !source->HasEnded()) {
        const std::chrono::duration<double> left = end - Clock::now();
        Show(source->Read(std::clamp(left.count(), 0.0, kLongestNap)), timeline, wanted,
             announcement, context.output);
        announcement.TimePasses();
    }
    return ExitCode::ok;
}

}  // namespace

std::vector<Verb> TraceVerbs() {
    return {
        {.name = "trace",
         .requests = "",
         .summary = "show what the driver does, beside the companion",
         .detail =
             "Prints one line for each request with its element, result, exchanges with the "
             "application and duration, for each message, and for each tick that does more than "
             "look at which application is in front. It works while the companion runs, and starts "
             "nothing in the driver. The standard error stream says when the driver has noticed "
             "it: what happened before, it may miss. Runs until "
             "SIGINT, SIGTERM or SIGHUP (exit code 0), until nobody reads its output, or to the "
             "limit of --count or --for. On macOS it runs the system's log tool.",
         .example = "krt9ctl trace --slow 20ms",
         .parameters = {{.name = "--slow",
                         .kind = ValueKind::text,
                         .help = "only what takes at least so long: 20ms, 1.5s",
                         .placeholder = "TIME"},
                        {.name = "--all",
                         .kind = ValueKind::flag,
                         .help = "also the ticks in which nothing happens"},
                        {.name = "--count",
                         .kind = ValueKind::number,
                         .help = "end after N lines",
                         .placeholder = "N",
                         .smallest = 1},
                        {.name = "--for",
                         .kind = ValueKind::seconds,
                         .help = "end after this time",
                         .placeholder = "SECONDS"}},
         .work = ActTrace},
    };
}

}  // namespace krt9ctl
