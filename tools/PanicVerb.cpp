// The verb that lets mouse buttons and keys go, without the driver.
#include <ApplicationServices/ApplicationServices.h>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <thread>

#include "VEKCommon/OwnedReference.h"
#include "scenes/notation/ValueWriting.h"
#include "tools/Grammar.h"
#include "tools/Keys.h"
#include "tools/Run.h"
#include "tools/Session.h"

namespace krt9ctl {

namespace {

constexpr std::chrono::seconds kPatience{1};
constexpr std::chrono::milliseconds kBetweenReads{10};

struct Button {
    std::string_view name;
    CGEventType up;
    CGMouseButton button;
};

constexpr Button kButtons[] = {
    {"left", kCGEventLeftMouseUp, kCGMouseButtonLeft},
    {"right", kCGEventRightMouseUp, kCGMouseButtonRight},
    {"center", kCGEventOtherMouseUp, kCGMouseButtonCenter},
};

struct Modifier {
    std::string_view name;
    CGKeyCode code;
};

// The driver presses those on the left.
constexpr Modifier kModifierKeys[] = {
    {"command", 55},       {"shift", 56},       {"option", 58},       {"control", 59},
    {"right command", 54}, {"right shift", 60}, {"right option", 61}, {"right control", 62},
};

using Event = OwnedReference<CGEventRef>;

Event Checked(CGEventRef created) {
    Event event(created);
    if (!event) {
        throw std::runtime_error("the system does not create the events");
    }
    return event;
}

// What the session's state holds down. The state of the hardware alone would not have what programs
// post.
struct Held {
    std::vector<std::string_view> buttons;
    std::vector<std::string_view> keys;
    bool IsEmpty() const { return buttons.empty() && keys.empty(); }
};

Held ReadHeld() {
    Held held;
    for (const Button& button : kButtons) {
        if (CGEventSourceButtonState(kCGEventSourceStateCombinedSessionState, button.button)) {
            held.buttons.push_back(button.name);
        }
    }
    const auto read = [&held](std::string_view name, CGKeyCode code) {
        if (CGEventSourceKeyState(kCGEventSourceStateCombinedSessionState, code)) {
            held.keys.push_back(name);
        }
    };
    for (const Modifier& key : kModifierKeys) {
        read(key.name, key.code);
    }
    for (const KeyRow& key : Keys()) {
        read(key.name, key.code);
    }
    return held;
}

bool Contains(const std::vector<std::string_view>& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// Buttons and modifier keys in any case, since the system may not tell that they are down; other
// keys when they are.
std::vector<Event> Releases(CGPoint where, const Held& held) {
    std::vector<Event> events;
    for (const Button& button : kButtons) {
        events.push_back(
            Checked(CGEventCreateMouseEvent(nullptr, button.up, where, button.button)));
    }
    for (const Modifier& key : kModifierKeys) {
        events.push_back(Checked(CGEventCreateKeyboardEvent(nullptr, key.code, false)));
    }
    for (const KeyRow& key : Keys()) {
        if (Contains(held.keys, key.name)) {
            events.push_back(Checked(CGEventCreateKeyboardEvent(nullptr, key.code, false)));
        }
    }
    for (const Event& event : events) {
        CGEventSetFlags(event.get(), 0);
    }
    return events;
}

// The system handles posted events when it comes to them.
Held AwaitRelease() {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    Held held = ReadHeld();
    while (!held.IsEmpty() && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(kBetweenReads);
        held = ReadHeld();
    }
    return held;
}

std::vector<std::string_view> Without(std::vector<std::string_view> names,
                                      const std::vector<std::string_view>& others) {
    std::erase_if(names, [&others](std::string_view name) { return Contains(others, name); });
    return names;
}

// "left button, right button, command"
std::string Enumerate(const Held& held) {
    std::vector<std::string> names;
    for (const std::string_view button : held.buttons) {
        names.push_back(fmt::format("{} button", button));
    }
    names.insert(names.end(), held.keys.begin(), held.keys.end());
    return fmt::format("{}", fmt::join(names, ", "));
}

Json ObjectOf(const Held& held) {
    return {{"buttons", held.buttons}, {"keys", held.keys}};
}

ExitCode Tell(const Held& released, const Held& held, CGPoint where, Output& output) {
    Json object = ObjectOf(released);
    const Json position = scene_notation::WritePosition({where.x, where.y});
    object["x"] = position[0];
    object["y"] = position[1];
    if (!held.IsEmpty()) {
        object["held"] = ObjectOf(held);
        output.Problem(ExitCode::unmet,
                       fmt::format("still pressed: {}{}{}", Enumerate(held),
                                   released.IsEmpty() ? "" : "; released: ", Enumerate(released)),
                       object);
        return ExitCode::unmet;
    }
    output.Result(object, released.IsEmpty() ? "no mouse button and no key was pressed"
                                             : fmt::format("released at {:g},{:g}: {}", where.x,
                                                           where.y, Enumerate(released)));
    return ExitCode::ok;
}

ExitCode ActPanic(const Arguments&, Context& context) {
    CheckSession();
    if (!AXIsProcessTrustedWithOptions(nullptr)) {
        const auto missing = FindMissingFromSession();
        context.output.Problem(ExitCode::accessibility,
                               missing ? missing->Explain()
                                       : "this process is not trusted for accessibility: the "
                                         "system would drop the events");
        return ExitCode::accessibility;
    }
    const CGPoint where = CGEventGetLocation(Checked(CGEventCreate(nullptr)).get());
    const Held before = ReadHeld();
    for (const Event& event : Releases(where, before)) {
        CGEventPost(kCGHIDEventTap, event.get());
    }
    const Held after = AwaitRelease();
    const Held released{Without(before.buttons, after.buttons), Without(before.keys, after.keys)};
    return Tell(released, after, where, context.output);
}

}  // namespace

std::vector<Verb> PanicVerbs() {
    return {
        {.name = "panic",
         .requests = "",
         .summary = "let all mouse buttons and keys go, without the driver",
         .detail = "For a gesture that nobody ended. Posts the events itself, whether a driver "
                   "runs or not: three mouse buttons go up where the pointer is, then command, "
                   "shift, option and control on both sides, and each other key that is down. "
                   "Prints what the system said was "
                   "pressed before. Exit code 0: all are up now; 14: the system says that some "
                   "are still pressed; 11: it needs the accessibility permission.",
         .example = "krt9ctl panic",
         .work = ActPanic},
    };
}

}  // namespace krt9ctl
