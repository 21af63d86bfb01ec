#include "tools/Run.h"

#include <fmt/format.h>

#include <optional>

#include "tools/Client.h"
#include "tools/CommandLine.h"
#include "tools/Conversation.h"
#include "tools/Interruption.h"

namespace krt9ctl {

namespace {

ExitCode SendPlan(const Plan& plan, Context& context) {
    // A single request has nothing to let go: the signal may end the process at once.
    std::optional<Interruption> interruption;
    if (plan.size() > 1) {
        interruption.emplace();
    }
    Client client(context.timeout);
    return Converse(
        plan, [&client](const Request& request) { return client.Send(request); },
        [&interruption] { return interruption && Interruption::Raised(); }, context.output);
}

ExitCode Carry(const Invocation& invocation, std::ostream& out, std::ostream& err) {
    Output output(out, err, invocation.json);
    Context context{output, invocation.timeout};
    const Verb& verb = *invocation.verb;
    try {
        const Arguments arguments(verb, invocation.given);
        if (const auto* makePlan = std::get_if<MakePlan>(&verb.work)) {
            return SendPlan((*makePlan)(arguments), context);
        }
        return std::get<Act>(verb.work)(arguments, context);
    } catch (const UsageError& error) {
        output.Problem(ExitCode::usage, fmt::format("{}: {}", verb.name, error.what()));
        return ExitCode::usage;
    } catch (const std::exception& error) {
        output.Problem(ExitCode::failure, fmt::format("{}: {}", verb.name, error.what()));
        return ExitCode::failure;
    }
}

}  // namespace

ExitCode RunCommandLine(std::vector<std::string> words, std::ostream& out, std::ostream& err) {
    try {
        const auto parsed = ParseCommandLine(TheGrammar(), std::move(words));
        if (const auto* information = std::get_if<Information>(&parsed)) {
            out << information->text << std::flush;
            return ExitCode::ok;
        }
        return Carry(std::get<Invocation>(parsed), out, err);
    } catch (const UsageError& error) {
        err << "krt9ctl: " << error.what() << " (see krt9ctl --help)" << std::endl;
        return ExitCode::usage;
    }
}

}  // namespace krt9ctl
