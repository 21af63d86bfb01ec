#include "tools/Run.h"

#include <fmt/format.h>

#include <optional>

#include "tools/Client.h"
#include "tools/CommandLine.h"
#include "tools/Interruption.h"
#include "tools/RequestVerb.h"
#include "tools/Version.h"
#include "tools/terminal/Help.h"
#include "tools/terminal/Terminal.h"

namespace krt9ctl {

namespace {

ExitCode Send(const Errand& errand, Context& context) {
    // A single request leaves nothing to release: the signal may end the process at once.
    std::optional<Interruption> interruption;
    if (!errand.IsSingleRequest()) {
        interruption.emplace();
    }
    Client client(context.timeout);
    return RunErrand(
        errand, [&client](const Request& request) { return client.Send(request); },
        [&interruption] { return interruption ? Interruption::Raised() : ExitCode::ok; },
        context.output);
}

ExitCode Carry(const Invocation& invocation, Context& context) {
    Output& output = context.output;
    context.timeout = invocation.timeout;
    const Verb& verb = *invocation.verb;
    try {
        const Arguments arguments(verb, invocation.given);
        if (std::holds_alternative<MakePlan>(verb.work)) {
            return Send(ErrandOf(verb, arguments), context);
        }
        return std::get<Act>(verb.work)(arguments, context);
    } catch (const UsageError& error) {
        throw UsageError(error.what(), verb.name);
    } catch (const std::exception& error) {
        output.Problem(ExitCode::failure, fmt::format("{}: {}", verb.name, error.what()));
        return ExitCode::failure;
    }
}

bool IsSignal(ExitCode code) {
    return code == ExitCode::interrupted || code == ExitCode::terminated ||
           code == ExitCode::hungUp;
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

ExitCode Obey(std::vector<std::string> words, std::size_t columns, Context& context) {
    Output& output = context.output;
    try {
        const auto parsed = ParseCommandLine(TheGrammar(), std::move(words));
        if (const auto* information = std::get_if<Information>(&parsed)) {
            Inform(*information, columns, output);
            return ExitCode::ok;
        }
        return Carry(std::get<Invocation>(parsed), context);
    } catch (const UsageError& error) {
        output.Problem(ExitCode::usage, Explain(error));
        return ExitCode::usage;
    }
}

}  // namespace

std::string Explain(const UsageError& error) {
    const std::string& command = error.Command();
    return fmt::format("{}{}{} (see krt9ctl {}{}--help)", command, command.empty() ? "" : ": ",
                       error.what(), command, command.empty() ? "" : " ");
}

ExitCode RunCommandLine(std::vector<std::string> words, const Streams& streams) {
    Output output(streams, AsksForJson(words));
    const std::size_t columns = terminal::Columns(streams.outDescriptor);
    Context context{output, kUsualTimeout, streams.inDescriptor};
    const ExitCode code = Obey(std::move(words), columns, context);
    // A reader that has gone may have missed the result as well as the failure.
    const bool isPiped = output.Status() == ExitCode::pipeClosed && !IsSignal(code);
    return code == ExitCode::ok || isPiped ? output.Status() : code;
}

}  // namespace krt9ctl
