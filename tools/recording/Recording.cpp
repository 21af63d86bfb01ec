#include "tools/recording/Recording.h"

#include <algorithm>
#include <stdexcept>

namespace recording {

namespace {

std::string_view WithoutLeadingBlanks(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    return text;
}

[[noreturn]] void Refuse(std::size_t line, std::string_view why) {
    throw std::invalid_argument("line " + std::to_string(line) + ": " + std::string(why));
}

}  // namespace

std::string Step::Verb() const {
    return text.substr(0, text.find(' '));
}

std::string Step::Rest() const {
    return std::string(WithoutLeadingBlanks(std::string_view(text).substr(Verb().size())));
}

std::vector<Step> ReadRecording(std::string_view text) {
    std::vector<Step> steps;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        if (line.starts_with(kStep)) {
            steps.push_back(
                {std::string(WithoutLeadingBlanks(line.substr(kStep.size()))), number, {}});
        } else if (line.starts_with(kOutcome)) {
            if (steps.empty()) {
                Refuse(number, "an outcome of no step");
            }
            const std::string_view outcome = WithoutLeadingBlanks(line);
            const std::string_view what = outcome.substr(0, outcome.find(' '));
            const std::string_view rest = WithoutLeadingBlanks(outcome.substr(what.size()));
            steps.back().outcomes.push_back({std::string(what), std::string(rest), number});
        } else if (!line.empty() && !line.starts_with('#')) {
            Refuse(number, "neither a step nor an outcome nor a remark");
        }
    }
    return steps;
}

std::string StepLine(std::string_view step) {
    return std::string(kStep) + std::string(step);
}

std::string OutcomeLine(std::string_view what, std::string_view text) {
    constexpr std::size_t kColumn = 12;
    std::string line = std::string(kOutcome) + std::string(what);
    line.resize(std::max(line.size() + 1, kColumn), ' ');
    return line + std::string(text);
}

std::string RequestText(std::int32_t code, const std::optional<Bytes>& body) {
    return CodeWord(code) + " " + HexOf(body);
}

std::string ReplyText(const std::optional<Bytes>& reply) {
    return HexOf(reply) + (reply ? " = " + IntegersIn(*reply) : "");
}

std::string MessageText(std::int32_t code, const Bytes& body) {
    return CodeWord(code) + " " + HexOf(body) + (body.empty() ? "" : " = " + QuotedText(body));
}

}  // namespace recording
