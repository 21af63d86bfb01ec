// The verb that lets mouse buttons and modifier keys go, without the driver.
#include <ApplicationServices/ApplicationServices.h>
#include <fmt/format.h>

#include <stdexcept>

#include "VEKCommon/OwnedReference.h"
#include "tools/Grammar.h"
#include "tools/Run.h"
#include "tools/Session.h"

namespace krt9ctl {

namespace {

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

struct Key {
    std::string_view name;
    CGKeyCode code;
};

// The driver presses those on the left.
constexpr Key kKeys[] = {
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

std::vector<Event> Releases(CGPoint where) {
    std::vector<Event> events;
    for (const Button& button : kButtons) {
        events.push_back(
            Checked(CGEventCreateMouseEvent(nullptr, button.up, where, button.button)));
    }
    for (const Key& key : kKeys) {
        events.push_back(Checked(CGEventCreateKeyboardEvent(nullptr, key.code, false)));
    }
    for (const Event& event : events) {
        CGEventSetFlags(event.get(), 0);
    }
    return events;
}

Json Names() {
    Json buttons = Json::array();
    for (const Button& button : kButtons) {
        buttons.push_back(button.name);
    }
    Json keys = Json::array();
    for (const Key& key : kKeys) {
        keys.push_back(key.name);
    }
    return {{"buttons", buttons}, {"keys", keys}};
}

ExitCode ActPanic(const Arguments&, Context& context) {
    CheckSession();
    if (!AXIsProcessTrustedWithOptions(nullptr)) {
        context.output.Problem(ExitCode::accessibility,
                               "this process is not trusted for accessibility: the system would "
                               "drop the events");
        return ExitCode::accessibility;
    }
    const CGPoint where = CGEventGetLocation(Checked(CGEventCreate(nullptr)).get());
    for (const Event& event : Releases(where)) {
        CGEventPost(kCGHIDEventTap, event.get());
    }
    Json object = Names();
    object["x"] = where.x;
    object["y"] = where.y;
    context.output.Result(object, fmt::format("mouse buttons released at {:g},{:g}, and the "
                                              "modifier keys",
                                              where.x, where.y));
    return ExitCode::ok;
}

}  // namespace

std::vector<Verb> PanicVerbs() {
    return {
        {.name = "panic",
         .requests = "",
         .summary = "let all mouse buttons and modifier keys go, without the driver",
         .detail = "For a gesture that nobody ended. Posts the events itself, whether a driver "
                   "runs or not: three mouse buttons go up where the pointer is, then command, "
                   "shift, option and control on both sides. What is not pressed stays as it is. "
                   "Needs the accessibility permission (exit code 11 without it).",
         .example = "krt9ctl panic",
         .work = ActPanic},
    };
}

}  // namespace krt9ctl
