// A recorded session: steps, each with what came of it.
//
// A recording is a text. Lines that begin with "> " are steps. The indented lines after a step are
// its outcomes: a word that says what it is, blanks, and the rest:
//
//     > ask JElV 171
//         request JElV ab000000
//         reply   01000000 = 1
//
// Empty lines and lines that begin with '#' are for the reader. What a step may be depends on who
// performs it; all of them know
//
//   scene FILE         the desktop on which the session takes place; the first step
//   language TAG       what the user prefers; before `start`
//   start              the driver starts
//   ask CODE WORD...   a request, its body as Notation.h says; without words an absent body
//   tick [N]           N tenths of a second pass (1)
//   desktop COMMAND    a command to the desktop, as JSON
//   unheard            messages of the driver are not recorded from now on: another process has the
//                      companion's port
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/recording/Notation.h"

namespace recording {

inline constexpr std::string_view kStep = "> ";
inline constexpr std::string_view kOutcome = "    ";

struct Outcome {
    std::string what;  // "reply"
    std::string text;  // "01000000 = 1"
    std::size_t line = 0;
};

struct Step {
    std::string text;  // without the mark
    std::size_t line = 0;
    std::vector<Outcome> outcomes;

    // The first word, and the text after it.
    std::string Verb() const;
    std::string Rest() const;
};

// Throws std::invalid_argument, with the number of the line, for a line that is none of these.
std::vector<Step> ReadRecording(std::string_view text);

std::string StepLine(std::string_view step);
// Its text stands in the same column in most outcomes.
std::string OutcomeLine(std::string_view what, std::string_view text);

// The texts of outcomes: "request", "reply" (nothing: there was none) and "message".
std::string RequestText(std::int32_t code, const std::optional<Bytes>& body);
std::string ReplyText(const std::optional<Bytes>& reply);
std::string MessageText(std::int32_t code, const Bytes& body);

}  // namespace recording
