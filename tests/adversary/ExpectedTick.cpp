// The periodic work.

#include "tests/adversary/ExpectedDriver.h"
#include "tests/adversary/ExpectedValues.h"

namespace adversary {

namespace {

struct Identifiers {
    const char* toggle;
    const char* clipTable;
    const char* timecodeArea;
    const char* firstClipName;
    const char* secondClipName;
};

constexpr Identifiers kIdentifiers[] = {
    {"_NS:59", "_NS:49", "_NS:99", "_NS:62", "_NS:433"},
    {"_NS:63", "_NS:49", "_NS:99", "_NS:62", "_NS:435"},
    {"_NS:159", "_NS:16", "_NS:16", "_NS:66", "_NS:66"},
    {"_NS:159", "_NS:139", "_NS:363", "_NS:62", "_NS:28"},
    {"_NS:159", "_NS:139", "_NS:352", "_NS:100", "_NS:28"},
    {"_NS:159", "_NS:139", "_NS:393", "_NS:100", "_NS:28"},
};

constexpr std::size_t kLongestName = 1024;    // bytes, with the terminator
constexpr std::size_t kLongestTimecode = 64;  // the same

}  // namespace

Outcome ExpectedDriver::Tick(Replay& replay) {
    Outcome outcome;
    if (front.isEditor && (observesClip || observesTimecode)) {
        if (observesClip) {
            FollowClip(replay, outcome);
        }
        if (observesTimecode) {
            FollowTimecode(replay, outcome);
        }
        indexChanged = false;
    }
    return outcome;
}

void ExpectedDriver::ReportName(const std::string& name, Outcome& outcome) {
    if (name != lastClipName) {
        outcome.sent.push_back("JFSC " + name);
        lastClipName = name;
    }
}

void ExpectedDriver::FollowClip(Replay& replay, Outcome& outcome) {
    if (clipNameSource == 2) {
        const bool visible = IndexIsVisible(replay);
        indexChanged = indexChanged || visible != indexVisible;
        indexVisible = visible;
        if (visible) {
            FollowTable(replay, outcome);
        }
        clipNameSource = 0;
        return;
    }
    const Identifiers& ids = kIdentifiers[profile];
    const auto element =
        Find(replay, clipNameSource == 0 ? ids.firstClipName : ids.secondClipName, "AXStaticText");
    if (!element) {
        ++clipNameSource;
        return;
    }
    const auto value = replay.Copy(*element, "AXValue");
    const std::string text = value ? TextIn(*value).value_or("") : "";
    if (text.empty()) {
        ReportName("no clip selected", outcome);
    } else if (const auto name = Sendable(text, kLongestName)) {
        ReportName(*name, outcome);
    }
}

bool ExpectedDriver::IndexIsVisible(Replay& replay) {
    std::optional<ElementReference> toggle;
    if (profile >= 2) {
        toggle = Find(replay, kIdentifiers[profile].toggle, "AXCheckBox");
    } else if (const auto group = Find(replay, kIdentifiers[profile].toggle, "AXRadioGroup")) {
        const Elements children = CopyElements(replay, *group, "AXChildren").value_or(Elements());
        toggle = children.empty() ? std::nullopt : children.front();
    }
    const auto value = toggle ? replay.Copy(*toggle, "AXValue") : std::nullopt;
    return value && NumberIn(*value).value_or(0) != 0;
}

void ExpectedDriver::FollowTable(Replay& replay, Outcome& outcome) {
    if (indexChanged) {
        lastRow = -1;
    }
    const auto table = Find(replay, kIdentifiers[profile].clipTable, "AXTable");
    const auto rows = table ? CopyElements(replay, *table, "AXSelectedRows") : std::nullopt;
    const auto row = rows && !rows->empty() ? rows->front() : std::nullopt;
    const auto value = row ? replay.Copy(*row, "AXIndex") : std::nullopt;
    const auto index = value ? NumberIn(*value) : std::nullopt;
    if (!index || *index == lastRow) {
        return;
    }
    lastRow = *index;
    if (const auto text = NameInRow(replay, *row)) {
        if (const auto name = Sendable(*text, kLongestName)) {
            ReportName(*name, outcome);
        }
    }
}

// Of release 10.3 alone the first cell holds a text field that holds the name.
std::optional<std::string> ExpectedDriver::NameInRow(Replay& replay, const ElementReference& row) {
    const Elements cells = CopyElements(replay, row, "AXChildren").value_or(Elements());
    std::optional<ElementReference> holder = cells.empty() ? std::nullopt : cells.front();
    if (profile == 2 && holder) {
        const Elements parts = CopyElements(replay, *holder, "AXChildren").value_or(Elements());
        holder = std::nullopt;
        for (const auto& part : parts) {
            const auto role = part ? replay.Copy(*part, "AXRole") : std::nullopt;
            if (role && TextIn(*role) == "AXTextField") {
                holder = part;
                break;
            }
        }
    }
    const auto value = holder ? replay.Copy(*holder, "AXValue") : std::nullopt;
    return value ? TextIn(*value) : std::nullopt;
}

void ExpectedDriver::FollowTimecode(Replay& replay, Outcome& outcome) {
    const auto area = Find(replay, kIdentifiers[profile].timecodeArea, "AXLayoutArea");
    const auto children = area ? CopyElements(replay, *area, "AXChildren") : std::nullopt;
    for (const auto& child : children.value_or(Elements())) {
        const auto role = child ? replay.Copy(*child, "AXRole") : std::nullopt;
        if (!role || TextIn(*role) != "AXValueIndicator") {
            continue;
        }
        const auto description = replay.Copy(*child, "AXDescription");
        if (!description || TextIn(*description) != "Playhead") {
            continue;
        }
        const auto value = replay.Copy(*child, "AXValueDescription");
        const auto text = value ? TextIn(*value) : std::nullopt;
        if (text && *text != lastTimecode) {
            lastTimecode = *text;
            if (const auto timecode = Sendable(*text, kLongestTimecode)) {
                outcome.sent.push_back("JFTC " + *timecode);
            }
        }
        return;
    }
}

}  // namespace adversary
