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

constexpr std::uint32_t kLeftMouseDown = 1;
constexpr std::uint32_t kLeftMouseUp = 2;
constexpr std::uint32_t kRightMouseDown = 3;
constexpr std::uint32_t kRightMouseUp = 4;
constexpr std::uint32_t kOtherMouseDown = 25;
constexpr std::uint32_t kOtherMouseUp = 26;
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
        FollowKey(event);
    }
    FollowButton(event);
    if (IsMouseEvent(event.type) && std::isfinite(event.position.x) &&
        std::isfinite(event.position.y)) {
        model_.pointer = event.position;
    }
    log_.AddEvent(event);
}

void EventTap::FollowKey(const desktop_link::Event& event) {
    const auto code = static_cast<std::size_t>(event.keyCode);
    if (event.keyCode < 0 || code >= keys_.size()) {
        return;
    }
    if (event.type == kKeyDown || event.type == kKeyUp) {
        keys_[code] = event.type == kKeyDown;
    } else if (event.type == kFlagsChanged) {
        for (const ModifierKey& key : kModifierKeys) {
            keys_[code] =
                key.keyCode == event.keyCode ? (event.flags & key.flag) != 0 : keys_[code];
        }
    }
}

void EventTap::FollowButton(const desktop_link::Event& event) {
    const auto number = static_cast<std::size_t>(event.button);
    if (event.button < 0 || number >= buttons_.size()) {
        return;
    }
    switch (event.type) {
        case kLeftMouseDown:
        case kRightMouseDown:
        case kOtherMouseDown:
            buttons_[number] = true;
            break;
        case kLeftMouseUp:
        case kRightMouseUp:
        case kOtherMouseUp:
            buttons_[number] = false;
            break;
        default:
            break;
    }
}

bool EventTap::IsKeyDown(std::int64_t keyCode) const {
    const auto code = static_cast<std::size_t>(keyCode);
    return code < keys_.size() && keys_[code];
}

bool EventTap::IsButtonDown(std::int64_t button) const {
    const auto number = static_cast<std::size_t>(button);
    return number < buttons_.size() && buttons_[number];
}

std::uint64_t EventTap::HeldFlags() const {
    std::uint64_t flags = 0;
    for (const ModifierKey& key : kModifierKeys) {
        flags |= IsKeyDown(key.keyCode) ? key.flag : 0;
    }
    return flags;
}

std::vector<std::string> EventTap::HeldModifiers() const {
    std::vector<std::string> names;
    for (const ModifierKey& key : kModifierKeys) {
        if (IsKeyDown(key.keyCode)) {
            names.emplace_back(key.name);
        }
    }
    return names;
}

}  // namespace desktop
