#include "tools/Run.h"

#include <fmt/format.h>

#include <optional>

#include "tools/Client.h"
#include "tools/CommandLine.h"
#include "tools/Conversation.h"
#include "tools/Interruption.h"
#include "tools/ReplyTimes.h"
#include "tools/Version.h"
#include "tools/terminal/Help.h"
#include "tools/terminal/Terminal.h"

namespace krt9ctl {

namespace {

ExitCode SendPlan(const Plan& plan, bool isMeasured, Context& context) {
    // A single request leaves nothing to release: the signal may end the process at once.
    std::optional<Interruption> interruption;
    if (plan.size() > 1) {
        interruption.emplace();
    }
    Client client(context.timeout);
    const auto carry = isMeasured ? MeasureReplies : Converse;
    return carry(
        plan, [&client](const Request& request) { return client.Send(request); },
        [&interruption] { return interruption ? Interruption::Raised() : ExitCode::ok; },
        context.output);
}

ExitCode Carry(const Invocation& invocation, Output& output) {
    Context context{output, invocation.timeout};
    const Verb& verb = *invocation.verb;
    try {
        const Arguments arguments(verb, invocation.given);
        if (const auto* makePlan = std::get_if<MakePlan>(&verb.work)) {
            const bool isMeasured = !verb.measuredWith.empty() && arguments.Has(verb.measuredWith);
            return SendPlan((*makePlan)(arguments), isMeasured, context);
        }
        return std::get<Act>(verb.work)(arguments, context);
    } catch (const UsageError& error) {
        throw UsageError(error.what(), verb.name);
    } catch (const std::exception& error) {
        output.Problem(ExitCode::failure, fmt::format("{}: {}", verb.name, error.what()));
        return ExitCode::failure;
    }
}

void Inform(const Information& information, std::size_t columns, Output& output) {
    if (!output.IsJson()) {
        output.Document(terminal::Wrapped(information.text, columns));
    } else if (information.isVersion) {
        output.Result({{"name", "krt9ctl"}, {"version", kVersion}}, "");
    } else {
        output.Result({{"help", information.text}}, "");
    }
}

// The verb, what is wrong, and the command that shows more.
std::string Explain(const UsageError& error) {
    const std::string& command = error.Command();
    return fmt::format("{}{}{} (see krt9ctl {}{}--help)", command, command.empty() ? "" : ": ",
                       error.what(), command, command.empty() ? "" : " ");
}

ExitCode Obey(std::vector<std::string> words, std::size_t columns, Output& output) {
    try {
        const auto parsed = ParseCommandLine(TheGrammar(), std::move(words));
        if (const auto* information = std::get_if<Information>(&parsed)) {
            Inform(*information, columns, output);
            return ExitCode::ok;
        }
        return Carry(std::get<Invocation>(parsed), output);
    } catch (const UsageError& error) {
        output.Problem(ExitCode::usage, Explain(error));
        return ExitCode::usage;
    }
}

}  // namespace

ExitCode RunCommandLine(std::vector<std::string> words, const Streams& streams) {
    Output output(streams, AsksForJson(words));
    const std::size_t columns = terminal::Columns(streams.outDescriptor);
    const ExitCode code = Obey(std::move(words), columns, output);
    return code == ExitCode::ok ? output.Status() : code;
}

}  // namespace krt9ctl
