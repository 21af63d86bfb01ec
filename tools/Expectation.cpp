#include "tools/Expectation.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>

#include "tools/Interruption.h"
#include "tools/Reply.h"

namespace krt9ctl {

namespace {

constexpr double kPause = 0.02;  // seconds between two questions

std::string NameOf(const Expectation& expectation) {
    return fmt::format("_NS:{}", expectation.element);
}

std::string_view FieldOf(const Request& question) {
    return FindRequest(question.code)->reply.front().name;
}

// Nothing without a reply that has its form.
std::optional<std::int64_t> NumberIn(const Request& question, const Answer& answer) {
    const auto values = DecodeReply(*FindRequest(question.code), answer.reply);
    return values ? std::optional(values->front()) : std::nullopt;
}

ExitCode Unmet(const Expectation& expectation, std::optional<std::int64_t> number,
               const std::string& sentence, Output& output) {
    const std::string code = FormatCode(expectation.question.code);
    Json object{{"code", code}, {"element", NameOf(expectation)}};
    if (number) {
        object[std::string(FieldOf(expectation.question))] = *number;
    }
    object["expected"] = expectation.number;
    output.Problem(ExitCode::unmet, fmt::format("'{}': {}", code, sentence), object);
    return ExitCode::unmet;
}

ExitCode ReportLast(const Expectation& expectation, const Answer& answer, Output& output) {
    const ExitCode delivery = ReportDelivery(expectation.question, answer, output);
    if (delivery != ExitCode::ok) {
        return delivery;
    }
    const auto number = NumberIn(expectation.question, answer);
    const std::string name = NameOf(expectation);
    const std::string_view field = FieldOf(expectation.question);
    return Unmet(expectation, number,
                 number ? fmt::format("{} has the {} {} and not {} after {:g} s", name, field,
                                      *number, expectation.number, expectation.within)
                        : fmt::format("the driver gave no {} of {} in {:g} s; see krt9ctl why {}",
                                      field, name, expectation.within, expectation.element),
                 output);
}

bool IsWorthAnotherTry(const Answer& answer) {
    const ExitCode code = DeliveryOf(answer.status).code;
    return code == ExitCode::ok || code == ExitCode::timeOut;
}

}  // namespace

ExitCode CheckThatItIsNews(const Expectation& expectation, const Send& send, Output& output) {
    if (!expectation.mustBeNews) {
        return ExitCode::ok;
    }
    const Answer answer = send(expectation.question);
    if (const ExitCode code = ReportDelivery(expectation.question, answer, output);
        code != ExitCode::ok) {
        return code;
    }
    const auto number = NumberIn(expectation.question, answer);
    if (number != expectation.number) {
        return ExitCode::ok;
    }
    return Unmet(expectation, number,
                 fmt::format("{} has the {} {} already, so that nothing would show what the "
                             "request did; it was not sent",
                             NameOf(expectation), FieldOf(expectation.question), *number),
                 output);
}

ExitCode AwaitNumber(const Expectation& expectation, const Send& send, const Stopped& stopped,
                     Output& output) {
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    output.Progress(fmt::format("waiting until {} is {}", NameOf(expectation), expectation.number));
    while (true) {
        const Answer answer = send(expectation.question);
        const auto number = NumberIn(expectation.question, answer);
        if (number == expectation.number) {
            output.Result({{"code", FormatCode(expectation.question.code)},
                           {"element", NameOf(expectation)},
                           {FieldOf(expectation.question), *number}},
                          "");
            return output.Status();
        }
        if (const ExitCode signal = stopped(); signal != ExitCode::ok) {
            ReportSignal(signal, output);
            return signal;
        }
        const double left =
            expectation.within - std::chrono::duration<double>(Clock::now() - start).count();
        if (left <= 0 || !IsWorthAnotherTry(answer)) {
            return ReportLast(expectation, answer, output);
        }
        Interruption::Pause(std::min(kPause, left));
    }
}

}  // namespace krt9ctl
