#include "tools/ReplyTimes.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace krt9ctl {

namespace {

// Whole microseconds: the clock is not finer than that between processes.
double Rounded(Milliseconds time) {
    return std::round(time.count() * 1000) / 1000;
}

void Print(const Request& request, const std::vector<Milliseconds>& times, Output& output) {
    const TimeSummary summary = Summarize(times);
    const double shortest = Rounded(summary.shortest);
    const double median = Rounded(summary.median);
    const double ninetyNinth = Rounded(summary.ninetyNinth);
    output.Result(
        {{"code", FormatCode(request.code)},
         {"count", times.size()},
         {"milliseconds", {{"min", shortest}, {"median", median}, {"p99", ninetyNinth}}}},
        fmt::format("{} {}: min {:.3f} ms, median {:.3f} ms, p99 {:.3f} ms", times.size(),
                    times.size() == 1 ? "reply" : "replies", shortest, median, ninetyNinth));
}

}  // namespace

TimeSummary Summarize(std::vector<Milliseconds> times) {
    std::sort(times.begin(), times.end());
    const std::size_t middle = times.size() / 2;
    const Milliseconds median =
        times.size() % 2 == 1 ? times[middle] : (times[middle - 1] + times[middle]) / 2;
    const std::size_t notLonger = (times.size() * 99 + 99) / 100;
    return {times.front(), median, times[notLonger - 1]};
}

ExitCode MeasureReplies(const Plan& plan, const Send& send, const Stopped& stopped,
                        Output& output) {
    using Clock = std::chrono::steady_clock;
    std::vector<Milliseconds> times;
    ExitCode signal = ExitCode::ok;
    for (const Request& request : plan) {
        output.Progress(fmt::format("request {} of {}", times.size() + 1, plan.size()));
        signal = stopped();
        if (signal != ExitCode::ok) {
            break;
        }
        const auto start = Clock::now();
        const Answer answer = send(request);
        times.emplace_back(Clock::now() - start);
        if (const ExitCode code = ReportDelivery(request, answer, output); code != ExitCode::ok) {
            return code;
        }
    }
    if (!times.empty()) {
        Print(plan.front(), times, output);
    }
    if (signal != ExitCode::ok) {
        ReportSignal(signal, output);
    }
    return signal;
}

}  // namespace krt9ctl
