#include "tools/report/Recorder.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <optional>

#include "VEKCommon/MessageCodes.h"
#include "tools/Version.h"
#include "tools/recording/Recording.h"

namespace krt9ctl {

namespace {

std::optional<Bytes> Present(const Bytes& bytes) {
    return bytes.empty() ? std::nullopt : std::optional(bytes);
}

bool IsWord(const std::string& tag) {
    return !tag.empty() && std::all_of(tag.begin(), tag.end(), [](unsigned char character) {
        return std::isalnum(character) != 0 || character == '-' || character == '_';
    });
}

}  // namespace

Recorder::Recorder(Listener* listener) : listener_(listener) {
    text_ = recording::StepLine("start") + "\n";
    if (listener_ == nullptr) {
        text_ += recording::StepLine("unheard") + "\n";
    }
}

void Recorder::AddOutcome(std::string_view what, std::string_view text) {
    text_ += recording::OutcomeLine(what, text) + "\n";
}

void Recorder::CatchUp() {
    if (listener_ == nullptr) {
        return;
    }
    const std::chrono::duration<double> passed = Clock::now() - last_;
    if (const long tenths = std::lround(passed.count() * 10); tenths > 0) {
        text_ += recording::StepLine(fmt::format("tick {}", tenths)) + "\n";
        last_ = Clock::now();
    }
    for (const krt9::Message& message : listener_->Take()) {
        ++messages_;
        AddOutcome("message", recording::MessageText(message.code, message.body));
        if (message.kind == krt9::MessageKind::language && IsWord(message.text)) {
            language_ = message.text;
        }
    }
}

Answer Recorder::Carry(const Request& request, const Send& send) {
    CatchUp();
    ++requests_;
    const std::string body = request.body.empty() ? "" : " " + recording::WordsOf(request.body);
    text_ += recording::StepLine(fmt::format("ask {}{}", recording::CodeWord(request.code), body)) +
             "\n";
    AddOutcome("request", recording::RequestText(request.code, Present(request.body)));
    Answer answer = send(request);
    const ExitCode code = DeliveryOf(answer.status).code;
    if (code == ExitCode::ok) {
        AddOutcome("reply", recording::ReplyText(Present(answer.reply)));
    } else {
        AddOutcome("failed", ExitCodeName(code));
    }
    return answer;
}

std::string Recorder::Text(const std::vector<std::string>& steps) const {
    std::string text = fmt::format("# Recorded by krt9ctl {}.\n", kVersion);
    for (const std::string& step : steps) {
        text += recording::StepLine(step) + "\n";
    }
    return text + recording::StepLine("language " + language_) + "\n" + text_;
}

}  // namespace krt9ctl
