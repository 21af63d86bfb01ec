#include "tools/EditorProfiles.h"

#include <algorithm>
#include <iterator>

#include "accessibility/VersionProfiles.h"

namespace krt9ctl {

namespace {

struct Row {
    std::string_view release;
    std::array<std::string_view, kProfileControlCount> identifiers;
};

constexpr Row kRows[] = {
#define EDITOR_RELEASE(row, prefix, scene, ...) {prefix, {__VA_ARGS__}},
#define EDITOR_RELEASE_ALIKE(row, prefix)
#include "accessibility/EditorReleases.def"
#undef EDITOR_RELEASE
#undef EDITOR_RELEASE_ALIKE
};

constexpr std::pair<std::string_view, FCPXProfile> kReleases[] = {
#define EDITOR_RELEASE(row, prefix, scene, ...) {prefix, row},
#define EDITOR_RELEASE_ALIKE(row, prefix) {prefix, row},
#include "accessibility/EditorReleases.def"
#undef EDITOR_RELEASE
#undef EDITOR_RELEASE_ALIKE
};

constexpr std::string_view kNames[] = {"timeline-index toggle", "clip table",
                                       "unread control",        "timecode area",
                                       "first clip name",       "second clip name"};

std::string_view RoleOf(std::size_t row, std::size_t control) {
    switch (control) {
        case kTimelineIndexToggle:
            return row < kProfile10_3 ? "AXRadioGroup" : "AXCheckBox";
        case kClipTable:
            return "AXTable";
        case kTimecodeArea:
            return "AXLayoutArea";
        case kFirstClipName:
        case kSecondClipName:
            return "AXStaticText";
        default:
            return {};
    }
}

std::array<EditorProfile, kEditorProfileCount> MakeProfiles() {
    std::array<EditorProfile, kEditorProfileCount> profiles;
    for (std::size_t row = 0; row < profiles.size(); ++row) {
        profiles[row].release = kRows[row].release;
        for (std::size_t control = 0; control < kProfileControlCount; ++control) {
            profiles[row].controls[control] = {kNames[control], kRows[row].identifiers[control],
                                               RoleOf(row, control)};
        }
    }
    return profiles;
}

}  // namespace

std::span<const EditorProfile> EditorProfiles() {
    static const auto profiles = MakeProfiles();
    return profiles;
}

// As the driver does: the last prefix that fits counts.
ChosenProfile ProfileOfVersion(std::string_view shortVersion) {
    const auto release = std::find_if(
        std::rbegin(kReleases), std::rend(kReleases),
        [&](const auto& candidate) { return shortVersion.starts_with(candidate.first); });
    const bool isKnown = release != std::rend(kReleases);
    const std::size_t row = isKnown ? release->second : kEditorProfileCount - 1;
    return {EditorProfiles()[row], isKnown};
}

}  // namespace krt9ctl
