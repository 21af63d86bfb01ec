#include "desktop/EventTap.h"

#include <cmath>

#include "platform/Variants/Variants.h"

namespace desktop {

namespace {

struct ModifierKey {
    std::int64_t keyCode;  // virtual key code
    std::uint64_t flag;
    const char* name;
};

constexpr ModifierKey kModifierKeys[] = {
    {55, 0x00100000, "command"},
    {56, 0x00020000, "shift"},
    {58, 0x00080000, "option"},
    {59, 0x00040000, "control"},
};

constexpr std::int32_t kPrivateState = -1;

constexpr std::uint32_t kKeyDown = 10;
constexpr std::uint32_t kKeyUp = 11;
constexpr std::uint32_t kFlagsChanged = 12;

bool IsMouseEvent(std::uint32_t type) {
    return (type >= 1 && type <= 7) || (type >= 25 && type <= 27);
}

}  // namespace

void EventTap::Post(desktop_link::Event event) {
    if (!model_.trusted) {
        return;
    }
    if (!event.flagsWereSet) {
        event.flags |= HeldFlags();
    }
    // It is not documented whether such events change what others inherit.
    const bool isPrivate = event.hasSource && event.sourceState == kPrivateState;
    if (!isPrivate || !platform_testing::IsOn(platform_testing::Variant::privateModifiers)) {
        FollowModifierKey(event);
    }
    if (IsMouseEvent(event.type) && std::isfinite(event.position.x) &&
        std::isfinite(event.position.y)) {
        model_.pointer = event.position;
    }
    log_.AddEvent(event);
}

void EventTap::FollowModifierKey(const desktop_link::Event& event) {
    for (std::size_t i = 0; i < std::size(kModifierKeys); ++i) {
        if (event.keyCode != kModifierKeys[i].keyCode) {
            continue;
        }
        if (event.type == kKeyDown || event.type == kKeyUp) {
            held_[i] = event.type == kKeyDown;
        } else if (event.type == kFlagsChanged) {
            held_[i] = (event.flags & kModifierKeys[i].flag) != 0;
        }
    }
}

std::uint64_t EventTap::HeldFlags() const {
    std::uint64_t flags = 0;
    for (std::size_t i = 0; i < std::size(kModifierKeys); ++i) {
        flags |= held_[i] ? kModifierKeys[i].flag : 0;
    }
    return flags;
}

std::vector<std::string> EventTap::HeldModifiers() const {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < std::size(kModifierKeys); ++i) {
        if (held_[i]) {
            names.emplace_back(kModifierKeys[i].name);
        }
    }
    return names;
}

}  // namespace desktop
