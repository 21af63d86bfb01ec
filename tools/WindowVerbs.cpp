// Verbs that find windows of the front application.
#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "VEKCommon/MessageCodes.h"
#include "companion/KRT9Companion.h"
#include "tools/Arguments.h"
#include "tools/Grammar.h"
#include "tools/Text.h"

namespace krt9ctl {

namespace {

// Bodies grow with the square of their number.
constexpr std::size_t kMostCandidates = 64;

constexpr std::size_t kLongestKey = 255;  // bytes

Plan PlanWindow(const Arguments& arguments) {
    return {{kJWiP,
             krt9::requests::FindWindow(arguments.Text("TITLE"), arguments.Has("--partial")).body}};
}

void CheckKey(const std::string& key) {
    const auto encoded = krt9::ToSystemEncoding(key);
    if (!encoded) {
        throw UsageError(
            fmt::format("KEY: '{}' has characters outside the system encoding", Printable(key)));
    }
    if (encoded->empty() || encoded->size() > kLongestKey) {
        throw UsageError(
            fmt::format("KEY: '{}' must have 1 to {} bytes", Printable(key), kLongestKey));
    }
}

krt9::Candidate CandidateOf(const std::string& keys) {
    const std::size_t slash = keys.find('/');
    krt9::Candidate candidate{keys.substr(0, slash), {}};
    CheckKey(candidate.name);
    if (slash != std::string::npos) {
        candidate.subWindowName = keys.substr(slash + 1);
        CheckKey(*candidate.subWindowName);
    }
    return candidate;
}

Plan PlanTarget(const Arguments& arguments) {
    const auto texts = arguments.Texts("KEY");
    if (texts.size() > kMostCandidates) {
        throw UsageError(fmt::format("KEY: at most {} candidates", kMostCandidates));
    }
    std::vector<krt9::Candidate> candidates;
    std::transform(texts.begin(), texts.end(), std::back_inserter(candidates), CandidateOf);
    return {{kJTWP, krt9::requests::FindTarget(candidates).value().body}};
}

}  // namespace

std::vector<Verb> WindowVerbs() {
    return {
        {.name = "window",
         .requests = "JWiP",
         .summary = "bring the window with this title to the front and print its frame",
         .detail = "Prints position and size in global display coordinates, points.",
         .example = "krt9ctl window \"Final Cut Pro\"",
         .parameters = {{.name = "TITLE", .kind = ValueKind::text, .help = "the window's title"},
                        {.name = "--partial",
                         .kind = ValueKind::flag,
                         .help = "TITLE may be any part of the window's title"}},
         .work = PlanWindow},
        {.name = "target",
         .requests = "JTWP",
         .summary = "find the first open window among candidates and print its frame",
         .detail = "Prints which candidate it was (0 for the first one), position and size in "
                   "points. The driver translates each key by its table of window titles and looks "
                   "for a window whose title contains the translation.",
         .example = "krt9ctl target Viewer Editor/BackgroundTasks",
         .parameters = {{.name = "KEY",
                         .kind = ValueKind::text,
                         .help = "key of a title; KEY/SUBKEY asks for the frame of SUBKEY's window "
                                 "when KEY's is open",
                         .presence = Presence::repeated}},
         .work = PlanTarget},
    };
}

}  // namespace krt9ctl
