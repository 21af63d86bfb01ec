#include "tools/documents/Programs.h"

namespace documents {

namespace {

constexpr terminal::Term kSessionFolder = {
    "KRT9_SESSION_DIR",
    "on Linux: the folder that stands for the session; without it $XDG_RUNTIME_DIR/krt9, else "
    "/tmp/krt9-UID"};

}  // namespace

const terminal::Program& CompanionProgram() {
    static const terminal::Program program = {
        .name = "krt9ctl",
        .section = 1,
        .summary = "talk to the KRT9 background driver",
        .description =
            "Sends every request that the driver knows, stands in for the companion's "
            "port, records accessibility trees as scenes and, on Linux, scripts the "
            "simulated desktop. Numbers are decimal, or hexadecimal after 0x. A text that "
            "begins with - stands after --. A drag or keystroke that fails or is "
            "interrupted lets the button go where the pointer is and releases the keys.",
        .parameters = {},
        .statuses = {},
        .environment = {kSessionFolder, {"NO_COLOR", "disables colours when it is set"}},
        .files = {},
        .signals = {{"SIGINT, SIGTERM, SIGHUP",
                     "end a gesture by releasing what it holds down, and watch cleanly"}},
        .example = "krt9ctl value 171",
        .seeAlso = {"krt9-desktop(1)", "KRT9Background(8)"},
    };
    return program;
}

const terminal::Program& DriverProgram() {
    static const terminal::Program program = {
        .name = "KRT9Background",
        .section = 8,
        .summary = "background driver of the KRT9 MIDI control surface",
        .description =
            "Reads, sets and presses controls of the editing application in front, posts "
            "keystrokes "
            "and mouse gestures, and reports the selected clip and the timecode as they change. "
            "The "
            "companion application tells it what to do over the message port KRT9Background, and "
            "hears from it over the port VEK_KRT9, which the driver looks for only once, when it "
            "starts. It takes no options and no settings file, and logs to the standard error "
            "stream "
            "or the system's log. It needs the permission to use accessibility. A second driver in "
            "the same session idles.",
        .parameters = {},
        .statuses = {{"0", "ended by SIGINT"}},
        .environment = {kSessionFolder},
        .files = {{"KRT9Background.app",
                   "the bundle that holds the program, its information "
                   "dictionary and the translated titles of windows"}},
        .signals = {{"SIGINT", "ends it cleanly"}},
        .example = "KRT9Background.app/Contents/MacOS/KRT9Background",
        .seeAlso = {"krt9ctl(1)", "krt9-desktop(1)"},
    };
    return program;
}

}  // namespace documents
