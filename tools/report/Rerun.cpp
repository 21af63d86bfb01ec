#include "tools/report/Rerun.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <memory>

#include "VEKCommon/MessageCodes.h"
#include "scenes/notation/Fields.h"
#include "tools/Client.h"
#include "tools/Interruption.h"
#include "tools/Text.h"
#include "tools/report/Listener.h"

namespace krt9ctl {

namespace {

using Clock = std::chrono::steady_clock;
using recording::Outcome;
using recording::Step;

constexpr double kPatience = 5;          // seconds, for a message that is recorded
constexpr double kAfterwards = 0.5;      // seconds, for messages that are not
constexpr double kLongestTick = 1;       // seconds
constexpr double kLongestIdle = 30;      // seconds, of all steps in which nothing is awaited
constexpr std::size_t kMostShown = 100;  // bytes of a step
constexpr double kLook = 0.02;           // seconds

struct RecordedMessage {
    std::size_t line;
    std::string text;  // without its code
};

// By the word of their code.
using Recorded = std::map<std::string, std::vector<RecordedMessage>>;
using Heard = std::map<std::string, std::vector<std::string>>;

std::string FirstWord(const std::string& text) {
    return text.substr(0, text.find(' '));
}

std::string AfterFirstWord(const std::string& text) {
    return text.substr(std::min(FirstWord(text).size() + 1, text.size()));
}

class Performance {
  public:
    Performance(const Material& material, PrivateSession& session, double timeout, Output& output)
        : material_(material), session_(session), client_(timeout), output_(output) {}

    Comparison Perform();

  private:
    void PerformStep(const Step& step);
    void Start();
    void Ask(const Step& step);
    void Tick(const Step& step);
    void Command(const Step& step);
    void TakeMessages(const Step& step);
    void Hear();
    bool HasHeardAll();
    void CompareMessages();
    [[noreturn]] static void Refuse(const Step& step, std::string_view why) {
        throw UnfitMaterial(fmt::format("line {} of the recording: {}: {}", step.line,
                                        Printable(step.text.substr(0, kMostShown)), why));
    }

    const Material& material_;
    PrivateSession& session_;
    Client client_;
    Output& output_;
    std::unique_ptr<Listener> listener_;
    bool hasStarted_ = false;
    bool isHeard_ = true;
    bool isOver_ = false;    // the driver cannot be asked any more
    bool isPatient_ = true;  // until a message does not come
    double idle_ = 0;        // seconds
    Recorded recorded_;
    Heard heard_;
    Comparison comparison_;
};

// The companion's port must be there before the driver.
void Performance::Start() {
    listener_ = Listener::Open();
    if (!listener_) {
        throw std::runtime_error("the companion's port of the private session is taken");
    }
    session_.StartDriver();
    hasStarted_ = true;
}

void Performance::Ask(const Step& step) {
    Request request;
    try {
        std::vector<std::string> words = recording::Words(step.Rest());
        if (words.empty()) {
            Refuse(step, "it names no code");
        }
        request.code = recording::CodeOf(words.front());
        words.erase(words.begin());
        request.body = recording::BodyOf(words).value_or(Bytes());
    } catch (const std::logic_error& error) {
        Refuse(step, Printable(error.what()));
    }
    output_.Progress(fmt::format("line {} of the recording", step.line));
    const Answer answer = client_.Send(request);
    ++comparison_.requests;
    const ExitCode code = DeliveryOf(answer.status).code;
    isOver_ = code != ExitCode::ok;
    const std::string now =
        isOver_ ? std::string(ExitCodeName(code))
                : recording::ReplyText(answer.reply.empty() ? std::nullopt
                                                            : std::optional(answer.reply));
    for (const Outcome& outcome : step.outcomes) {
        const bool isReply = outcome.what == "reply" || outcome.what == "failed";
        if (isReply && FirstWord(outcome.text) != FirstWord(now)) {
            comparison_.differences.push_back({outcome.line, step.text, outcome.text, now});
        }
    }
}

// The driver ticks by the real clock.
void Performance::Tick(const Step& step) {
    int tenths = 1;
    try {
        tenths = step.Rest().empty() ? 1 : std::stoi(step.Rest());
    } catch (const std::logic_error&) {
        Refuse(step, "no number");
    }
    const bool isAwaited = std::any_of(step.outcomes.begin(), step.outcomes.end(),
                                       [](const Outcome& each) { return each.what == "message"; });
    const double pause = std::min({tenths / 10.0, kLongestTick, kLongestIdle - idle_});
    if (!isAwaited && pause > 0) {
        idle_ += pause;
        Interruption::Pause(pause);
    }
}

// What nests too deep for the functions that write JSON is refused.
void Performance::Command(const Step& step) {
    Json command;
    try {
        const nlohmann::json read = scene_notation::ParseJson(step.Rest(), "");
        scene_notation::ExpectObject(read, "");
        scene_notation::ExpectShallow(read, "");
        command = read;
    } catch (const std::runtime_error& error) {
        Refuse(step, Printable(error.what()));
    }
    const auto answer = session_.Ask(command);
    if (!answer) {
        Refuse(step, "the simulated desktop does not reply");
    }
    if (answer->contains("error")) {
        Refuse(step, Printable(OneLine((*answer)["error"])));
    }
}

void Performance::PerformStep(const Step& step) {
    const std::string verb = step.Verb();
    if (verb == "start" && !hasStarted_) {
        Start();
    } else if (verb == "unheard") {
        isHeard_ = false;
    } else if (verb == "ask" && hasStarted_) {
        Ask(step);
    } else if (verb == "tick" && hasStarted_) {
        Tick(step);
    } else if (verb == "desktop") {
        Command(step);
    } else if (verb != "scene" && verb != "language") {
        Refuse(step, "replay cannot perform this step here");
    }
}

// Waits for those of the step; gives up waiting for all others when one does not come.
void Performance::TakeMessages(const Step& step) {
    for (const Outcome& outcome : step.outcomes) {
        if (outcome.what == "message" && isHeard_) {
            recorded_[FirstWord(outcome.text)].push_back(
                {outcome.line, AfterFirstWord(outcome.text)});
            ++comparison_.messages;
        }
    }
    const auto end = Clock::now() + std::chrono::duration<double>(kPatience);
    while (isPatient_ && !isOver_ && !HasHeardAll() && Interruption::Raised() == ExitCode::ok) {
        isPatient_ = Clock::now() < end;
        Interruption::Pause(kLook);
    }
}

void Performance::Hear() {
    for (const krt9::Message& message :
         listener_ ? listener_->Take() : std::vector<krt9::Message>()) {
        heard_[recording::CodeWord(message.code)].push_back(
            AfterFirstWord(recording::MessageText(message.code, message.body)));
    }
}

bool Performance::HasHeardAll() {
    Hear();
    return std::all_of(recorded_.begin(), recorded_.end(), [this](const auto& each) {
        const std::size_t awaited =
            each.first == recording::CodeWord(kStus) ? 1 : each.second.size();
        return heard_[each.first].size() >= awaited;
    });
}

void Performance::CompareMessages() {
    Interruption::Pause(kAfterwards);
    Hear();
    const std::string status = recording::CodeWord(kStus);
    const std::string language = recording::CodeWord(kJSLg);
    for (auto& [code, texts] : heard_) {
        auto& before = recorded_[code];
        const std::size_t count = code == status ? 1 : std::max(before.size(), texts.size());
        // A recording that began after the driver has none of what comes by itself.
        const bool comesByItself = code == status || code == language;
        for (std::size_t i = 0; i < count && !(comesByItself && before.empty()); ++i) {
            const std::string recorded = i < before.size() ? before[i].text : "nothing";
            const std::string now = i < texts.size() ? texts[i] : "nothing";
            if (recorded != now) {
                comparison_.differences.push_back(
                    {i < before.size() ? before[i].line : 0, "message " + code, recorded, now});
            }
        }
    }
}

Comparison Performance::Perform() {
    for (const Step& step : material_.steps) {
        if (isOver_ || Interruption::Raised() != ExitCode::ok) {
            break;
        }
        PerformStep(step);
        TakeMessages(step);
    }
    if (isHeard_ && listener_ && !isOver_ && Interruption::Raised() == ExitCode::ok) {
        CompareMessages();
    }
    comparison_.stopped = Interruption::Raised();
    return comparison_;
}

}  // namespace

Comparison Rerun(const Material& material, PrivateSession& session, double timeout,
                 Output& output) {
    return Performance(material, session, timeout, output).Perform();
}

}  // namespace krt9ctl
