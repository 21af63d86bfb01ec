// The verb that carries out the command lines of its input, over one connection.
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <iomanip>
#include <sstream>

#include "tools/Batch.h"
#include "tools/Client.h"
#include "tools/CommandLine.h"
#include "tools/Conversation.h"
#include "tools/InputLines.h"
#include "tools/Interruption.h"
#include "tools/KeptOutput.h"
#include "tools/RequestVerb.h"
#include "tools/Run.h"
#include "tools/Text.h"
#include "tools/Unreleased.h"

namespace krt9ctl {

namespace {

std::vector<std::string> WordsOf(const std::string& line) {
    if (line.find('\0') != std::string::npos) {
        throw UsageError("the line has a zero byte");
    }
    std::istringstream rest(line);
    std::vector<std::string> words;
    while (!(rest >> std::ws).eof()) {
        std::string word;
        if (!(rest >> std::quoted(word))) {
            throw UsageError("a quotation mark is not closed");
        }
        words.push_back(word);
    }
    return words;
}

bool IsSkipped(const std::vector<std::string>& words) {
    return words.empty() || words.front().starts_with('#');
}

// Throws UsageError for what is not one verb that sends requests.
Invocation InvocationOf(const std::vector<std::string>& words) {
    const auto parsed = ParseCommandLine(TheGrammar(), words);
    const auto* invocation = std::get_if<Invocation>(&parsed);
    if (invocation == nullptr) {
        throw UsageError("help and version are not for a batch");
    }
    if (!std::holds_alternative<MakePlan>(invocation->verb->work)) {
        throw UsageError("only verbs that send requests can stand in a batch",
                         invocation->verb->name);
    }
    if (invocation->json) {
        throw UsageError("--json stands before or after the verb batch itself");
    }
    return *invocation;
}

class Batch {
  public:
    Batch(Context& context, const Carrier& carrier)
        : output_(context.output), carrier_(carrier), usualTimeout_(context.timeout) {}

    ExitCode Run(InputLines& lines, bool stopsAtFailure);

  private:
    // Nothing for a line that has no verb.
    std::optional<ExitCode> Obey(const InputLine& line);
    ExitCode CarryOut(const InputLine& line, const std::vector<std::string>& words,
                      KeptOutput& kept);
    void Tell(ExitCode code, const KeptOutput& kept);
    Answer Send(const Request& request);
    Answer Carry(const Request& request);
    ExitCode ReleaseWhatIsPressed();

    Output& output_;
    const Carrier& carrier_;
    double usualTimeout_;
    Client client_{usualTimeout_};
    Unreleased unreleased_;
    std::size_t number_ = 0;  // of the line, from 1
};

ExitCode Batch::CarryOut(const InputLine& line, const std::vector<std::string>& words,
                         KeptOutput& kept) {
    if (line.isTooLong) {
        throw UsageError(fmt::format("the line has more than {} bytes", kLongestLine));
    }
    const Invocation invocation = InvocationOf(words);
    const Verb& verb = *invocation.verb;
    client_.SetTimeout(invocation.hasTimeout ? invocation.timeout : usualTimeout_);
    try {
        const Errand errand = ErrandOf(verb, Arguments(verb, invocation.given));
        return RunErrand(
            errand, [this](const Request& request) { return Send(request); }, Interruption::Raised,
            kept);
    } catch (const UsageError& error) {
        throw UsageError(error.what(), verb.name);
    }
}

Answer Batch::Send(const Request& request) {
    Answer answer = Carry(request);
    if (answer.status != kPortMissing) {
        unreleased_.Note(request);
    }
    return answer;
}

Answer Batch::Carry(const Request& request) {
    return carrier_(request, [this](const Request& each) { return client_.Send(each); });
}

// Nobody else would: the lines that should do it will not come.
ExitCode Batch::ReleaseWhatIsPressed() {
    const auto releases = unreleased_.Releases();
    if (releases.empty()) {
        return ExitCode::ok;
    }
    client_.SetTimeout(usualTimeout_);
    KeptOutput kept;
    const ExitCode code = Release(
        releases, [this](const Request& request) { return Carry(request); }, kept);
    if (code == ExitCode::ok) {
        output_.Remark("the lines ended in the middle of a gesture or a key press: released");
    } else {
        output_.Problem(code,
                        "the lines ended in the middle of a gesture or a key press, which "
                        "krt9ctl panic releases, since the driver did not: " +
                            kept.Failure());
    }
    return code;
}

std::optional<ExitCode> Batch::Obey(const InputLine& line) {
    KeptOutput kept;
    ExitCode code = ExitCode::ok;
    try {
        const auto words = WordsOf(line.text);
        if (!line.isTooLong && IsSkipped(words)) {
            return std::nullopt;
        }
        output_.Progress(fmt::format("line {}", number_));
        code = CarryOut(line, words, kept);
    } catch (const UsageError& error) {
        code = ExitCode::usage;
        kept.Problem(code, Explain(error));
    } catch (const std::exception& error) {
        code = ExitCode::failure;
        kept.Problem(code, error.what());
    }
    Tell(code, kept);
    return code;
}

void Batch::Tell(ExitCode code, const KeptOutput& kept) {
    Json object{{"line", number_}, {"replies", kept.Objects()}};
    if (code == ExitCode::ok) {
        const std::string said = fmt::format("{}", fmt::join(kept.Sentences(), ", "));
        output_.Result(object, fmt::format("{}: {}", number_, said.empty() ? "ok" : said));
        return;
    }
    object["error"] = ExitCodeName(code);
    object["message"] = kept.Failure();
    output_.Result(object, fmt::format("{}: {}: {}", number_, ExitCodeName(code), kept.Failure()));
}

ExitCode Batch::Run(InputLines& lines, bool stopsAtFailure) {
    ExitCode first = ExitCode::ok;
    while (output_.Status() == ExitCode::ok) {
        output_.Progress("waiting for a line of the standard input");
        const auto line = lines.Next();
        if (!line) {
            break;
        }
        ++number_;
        const ExitCode code = Obey(*line).value_or(ExitCode::ok);
        first = first == ExitCode::ok ? code : first;
        if (Interruption::Raised() != ExitCode::ok || (stopsAtFailure && first != ExitCode::ok)) {
            break;
        }
    }
    const ExitCode released = ReleaseWhatIsPressed();
    if (const ExitCode signal = Interruption::Raised(); signal != ExitCode::ok) {
        ReportSignal(signal, output_);
        return signal;
    }
    return first == ExitCode::ok ? released : first;
}

ExitCode ActBatch(const Arguments& arguments, Context& context) {
    const Interruption interruption;
    return RunBatch(context, arguments.Has("--stop"),
                    [](const Request& request, const Send& send) { return send(request); });
}

}  // namespace

ExitCode RunBatch(Context& context, bool stopsAtFailure, const Carrier& carrier) {
    InputLines lines(context.inDescriptor);
    return Batch(context, carrier).Run(lines, stopsAtFailure);
}

std::vector<Verb> BatchVerbs() {
    return {
        {.name = "batch",
         .requests = "",
         .summary = "carry out the command lines of the standard input over one connection",
         .detail = "Each line is a verb that sends requests, with its arguments: value 59. Words "
                   "are separated by blanks; a word with blanks stands in double quotes, in which "
                   "\\\" and \\\\ are a quotation mark and a backslash. Empty lines and those that "
                   "begin with # are skipped. Prints one line for each other one: its number and "
                   "the reply, ok, or the name of an exit code and what is wrong. A line that "
                   "fails does not end the batch, whose exit code is that of the first failure. "
                   "A line may have its own --timeout. When the lines end, or are ended by a "
                   "signal or by --stop, in the middle of a gesture, the button and the modifier "
                   "keys go up where the pointer is, and so does a key that is still pressed.",
         .example = "krt9ctl batch --stop",
         .parameters = {{.name = "--stop",
                         .kind = ValueKind::flag,
                         .help = "end with the first line that fails"}},
         .work = ActBatch},
    };
}

}  // namespace krt9ctl
