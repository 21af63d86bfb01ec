// Verbs that find windows of the front application.
#include <fmt/format.h>

#include <algorithm>
#include <cstring>

#include "VEKCommon/MessageCodes.h"
#include "protocol/TargetWindowRequestSpec.h"
#include "protocol/WindowRequestSpec.h"
#include "tools/Arguments.h"
#include "tools/Grammar.h"
#include "tools/RequestBody.h"
#include "tools/Text.h"

namespace krt9ctl {

namespace {

// Bodies grow with the square of their number.
constexpr std::size_t kMostCandidates = 64;

Plan PlanWindow(const Arguments& arguments) {
    return {
        {kJWiP, BodyOf(SWindowRequestSpec(arguments.Text("TITLE"), arguments.Has("--partial")))}};
}

// Checks a key and stores it in the two forms that a candidate contains.
template <std::size_t size, std::size_t unitCount>
void StoreKey(const std::string& key, char (&name)[size], UniChar (&units)[unitCount],
              unsigned long long& length) {
    const auto encoded = ToSystemEncoding(key);
    if (!encoded) {
        throw UsageError(
            fmt::format("KEY: '{}' has characters outside the system encoding", Printable(key)));
    }
    const auto utf16 = ToUtf16(key);
    if (encoded->empty() || encoded->size() >= size || utf16.size() > unitCount) {
        throw UsageError(
            fmt::format("KEY: '{}' must have 1 to {} bytes", Printable(key), size - 1));
    }
    std::copy(encoded->begin(), encoded->end(), name);
    std::copy(utf16.begin(), utf16.end(), units);
    length = utf16.size();
}

void StoreCandidate(const std::string& keys, VEK_Driver_TargetWindowInfo& candidate) {
    const std::size_t slash = keys.find('/');
    StoreKey(keys.substr(0, slash), candidate.windowName, candidate.windowNameUnicode,
             candidate.windowNameLength);
    candidate.hasSubWindow = slash != std::string::npos;
    if (candidate.hasSubWindow) {
        StoreKey(keys.substr(slash + 1), candidate.subWindowName, candidate.subWindowNameUnicode,
                 candidate.subWindowNameLength);
    }
}

std::size_t SizeOfFields(const std::vector<VEK_Driver_TargetWindowInfo>& candidates) {
    std::size_t size = STargetWindowRequestSpec::kSmallestSize;
    for (const auto& candidate : candidates) {
        size += STargetWindowRequestSpec::CalcInfoFieldSize(candidate);
        size += candidate.hasSubWindow ? std::strlen(candidate.subWindowName) + 1 : 0;
    }
    return size;
}

// The record's own size can omit the end of a lone second name; its bytes do not.
Bytes TargetBody(const std::vector<VEK_Driver_TargetWindowInfo>& candidates) {
    STargetWindowRequestSpec record(candidates.data(),
                                    static_cast<unsigned int>(candidates.size()));
    const unsigned char* bytes = record.Serialize();
    return {bytes,
            bytes + std::max<std::size_t>(record.SerialBufferSize(), SizeOfFields(candidates))};
}

Plan PlanTarget(const Arguments& arguments) {
    const auto texts = arguments.Texts("KEY");
    if (texts.size() > kMostCandidates) {
        throw UsageError(fmt::format("KEY: at most {} candidates", kMostCandidates));
    }
    std::vector<VEK_Driver_TargetWindowInfo> candidates(texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i) {
        StoreCandidate(texts[i], candidates[i]);
    }
    return {{kJTWP, TargetBody(candidates)}};
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
