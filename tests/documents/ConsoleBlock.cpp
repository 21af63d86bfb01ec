#include "tests/documents/ConsoleBlock.h"

#include <fmt/format.h>

#include <stdexcept>
#include <string_view>

#include "scenes/notation/Hex.h"

namespace documents {

namespace {

constexpr std::string_view kCommand = "$ ";
constexpr std::string_view kMoreOfCommand = "> ";
constexpr std::string_view kToDriver = "->";
constexpr std::string_view kFromDriver = "<-";
constexpr std::string_view kDesktop = "desktop: ";
constexpr std::string_view kDriver = "driver: ";
constexpr std::string_view kNothing = "nothing";
constexpr std::size_t kCodeLength = 4;

class Reader {
  public:
    explicit Reader(int line) : line_(line) {}

    std::vector<Step> Read(const std::vector<std::string>& code) {
        for (const std::string& line : code) {
            Take(line);
            ++line_;
        }
        return std::move(steps_);
    }

  private:
    void Take(const std::string& line);
    void TakeCommand(std::string command);
    void TakeExchange(StepKind opens, StepKind replies, std::string_view rest);
    void TakeOther(const std::string& line);
    Bytes BytesOf(std::string_view text) const;
    [[noreturn]] void Refuse(std::string_view why) const {
        throw std::runtime_error(fmt::format("line {}: {}", line_, why));
    }
    Step& Last(StepKind kind, std::string_view why) {
        if (steps_.empty() || steps_.back().kind != kind) {
            Refuse(why);
        }
        return steps_.back();
    }

    int line_;
    std::vector<Step> steps_;
    Bytes* open_ = nullptr;  // the bytes that an indented line continues
};

std::string_view WithoutComment(std::string_view text) {
    text = text.substr(0, text.find('#'));
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string_view::npos
               ? std::string_view()
               : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

bool IsBlank(std::string_view text) {
    return text.find_first_not_of(' ') == std::string_view::npos;
}

Bytes Reader::BytesOf(std::string_view text) const {
    std::string digits;
    for (const char character : text) {
        if (character != ' ') {
            digits += character;
        }
    }
    const auto bytes = scene_notation::ParseHex(digits);
    if (!bytes) {
        Refuse(fmt::format("'{}' are not bytes", text));
    }
    return {bytes->begin(), bytes->end()};
}

void Reader::Take(const std::string& line) {
    const std::string_view text = line;
    if (text.starts_with(kCommand)) {
        TakeCommand(line.substr(kCommand.size()));
    } else if (text.starts_with(kToDriver)) {
        TakeExchange(StepKind::request, StepKind::message, text.substr(kToDriver.size()));
    } else if (text.starts_with(kFromDriver)) {
        TakeExchange(StepKind::message, StepKind::request, text.substr(kFromDriver.size()));
    } else if (open_ != nullptr && text.starts_with(" ")) {
        const Bytes more = BytesOf(WithoutComment(text));
        open_->insert(open_->end(), more.begin(), more.end());
    } else {
        TakeOther(line);
    }
}

void Reader::TakeCommand(std::string command) {
    open_ = nullptr;
    Step step{.kind = StepKind::command, .line = line_, .text = std::move(command)};
    step.isBackground = step.text.ends_with(" &");
    if (step.isBackground) {
        step.text.resize(step.text.size() - 2);
    }
    steps_.push_back(std::move(step));
}

// With a code it begins an exchange, without one it replies to the other side.
void Reader::TakeExchange(StepKind opens, StepKind replies, std::string_view rest) {
    rest = WithoutComment(rest);
    const std::string_view word = rest.substr(0, rest.find(' '));
    if (word.size() == kCodeLength) {
        steps_.push_back({.kind = opens, .line = line_, .text = std::string(word)});
        steps_.back().body = BytesOf(rest.substr(word.size()));
        open_ = &steps_.back().body;
        return;
    }
    Step& step = Last(replies, "a reply to nothing");
    step.reply = rest == kNothing ? Bytes() : BytesOf(rest);
    if (rest != kNothing && step.reply->empty()) {
        Refuse("neither bytes nor 'nothing'");
    }
    open_ = &*step.reply;
}

void Reader::TakeOther(const std::string& line) {
    open_ = nullptr;
    const std::string_view text = line;
    if (text.starts_with(kMoreOfCommand)) {
        Last(StepKind::command, "the rest of no command").text +=
            "\n" + line.substr(kMoreOfCommand.size());
    } else if (text.starts_with(kDesktop)) {
        steps_.push_back(
            {.kind = StepKind::desktop, .line = line_, .text = line.substr(kDesktop.size())});
    } else if (text.starts_with(kDriver)) {
        steps_.push_back(
            {.kind = StepKind::driver, .line = line_, .text = line.substr(kDriver.size())});
    } else if (text.starts_with("[") && text.ends_with("]")) {
        Last(StepKind::command, "an exit code of nothing").exitCode =
            std::stoi(line.substr(1, line.size() - 2));
    } else if (!IsBlank(text)) {
        Last(StepKind::command, "neither a step nor the output of a command")
            .output.push_back(line);
    }
}

}  // namespace

std::vector<Step> ReadConsole(const std::vector<std::string>& code, int firstLine) {
    return Reader(firstLine).Read(code);
}

}  // namespace documents
