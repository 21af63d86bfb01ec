#include "desktop/EventLog.h"

#include <algorithm>
#include <utility>

#include "scenes/notation/Json.h"
#include "scenes/notation/ValueWriting.h"

namespace desktop {

using namespace scene_notation;
using nlohmann::ordered_json;

namespace {

constexpr std::uint32_t kFlagsChanged = 12;
constexpr std::uint32_t kScrollWheel = 22;

constexpr std::pair<std::uint32_t, const char*> kTypeNames[] = {
    {0, "null"},
    {1, "leftMouseDown"},
    {2, "leftMouseUp"},
    {3, "rightMouseDown"},
    {4, "rightMouseUp"},
    {5, "mouseMoved"},
    {6, "leftMouseDragged"},
    {7, "rightMouseDragged"},
    {10, "keyDown"},
    {11, "keyUp"},
    {kFlagsChanged, "flagsChanged"},
    {kScrollWheel, "scrollWheel"},
    {25, "otherMouseDown"},
    {26, "otherMouseUp"},
    {27, "otherMouseDragged"},
};

const char* TypeName(std::uint32_t type) {
    const auto* found = std::find_if(std::begin(kTypeNames), std::end(kTypeNames),
                                     [&](const auto& each) { return each.first == type; });
    return found == std::end(kTypeNames) ? "other" : found->second;
}

template <typename Entries>
void DropOlderHalf(Entries& entries) {
    entries.erase(entries.begin(),
                  entries.begin() + static_cast<std::ptrdiff_t>(entries.size() / 2));
}

}  // namespace

void EventLog::Add(ordered_json entry) {
    ordered_json numbered;
    numbered["n"] = ++lastNumber_;
    for (auto& [key, value] : entry.items()) {
        numbered[key] = std::move(value);
    }
    if (lines_.size() == mostEntries_) {
        DropOlderHalf(lines_);
    }
    lines_.push_back(OneLine(numbered));
    if (sink_) {
        sink_(lines_.back());
    }
}

void EventLog::AddEvent(const desktop_link::Event& event) {
    if (events_.size() == mostEntries_) {
        DropOlderHalf(events_);
    }
    events_.push_back(event);
    ordered_json entry = {{"event", TypeName(event.type)}, {"type", event.type}};
    const bool keyboard = event.type >= 10 && event.type <= kFlagsChanged;
    if (keyboard) {
        entry["keyCode"] = event.keyCode;
    } else if (event.type == kScrollWheel) {
        entry["unit"] = event.scrollUnit;
        entry["wheels"] = event.wheels;
    } else {
        entry["position"] = WritePosition(event.position);
        entry["button"] = event.button;
    }
    entry["flags"] = event.flags;
    entry["flagsSet"] = event.flagsWereSet;
    entry["source"] = event.hasSource ? ordered_json(event.sourceState) : ordered_json(nullptr);
    entry["tap"] = event.tap;
    Add(std::move(entry));
}

std::vector<std::string> EventLog::LinesSince(std::uint64_t since) const {
    const std::uint64_t first = lastNumber_ - lines_.size();  // number before the first line
    const std::uint64_t skip =
        std::min<std::uint64_t>(since > first ? since - first : 0, lines_.size());
    return {lines_.begin() + static_cast<std::ptrdiff_t>(skip), lines_.end()};
}

void EventLog::Clear() {
    lines_.clear();
    events_.clear();
}

}  // namespace desktop
