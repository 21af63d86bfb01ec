#include "desktop/Program.h"

namespace desktop {

const terminal::Program& DesktopProgram() {
    using terminal::Presence;
    using terminal::ValueKind;
    static const terminal::Program program = {
        .name = "krt9-desktop",
        .section = 1,
        .summary = "simulate a log-in session with applications, input, screens and MIDI",
        .description =
            "Serves the session that a scene describes to the processes of the session: "
            "the driver, its companion, krt9ctl. Prints one line, ready, when it can be "
            "used, and runs until it is stopped. The notation of scenes is described in "
            "docs/scenes.md of the sources.",
        .parameters = {{.name = "SCENE", .kind = ValueKind::file, .help = "the session as JSON"},
                       {.name = "--log",
                        .kind = ValueKind::file,
                        .help = "write the log to this file, one JSON object a line",
                        .placeholder = "FILE"},
                       {.name = "--ready-fd",
                        .kind = ValueKind::number,
                        .help = "write \"ready\" to this descriptor instead of the standard output",
                        .placeholder = "N",
                        .largest = 0xFFFF},
                       {.name = "--play",
                        .kind = ValueKind::flag,
                        .help = "play the scene's script from the start"}},
        .statuses = {{"0", "stopped by a signal or by krt9ctl desktop stop"},
                     {"1",
                      "the scene, the session or the output cannot be used; one line says why"},
                     {"2", "the command line is wrong"},
                     {"141", "nobody reads the output"}},
        .environment = {{"KRT9_SESSION_DIR",
                         "the folder that stands for the session; without it "
                         "$XDG_RUNTIME_DIR/krt9, else /tmp/krt9-UID"},
                        {"NO_COLOR", "disables colours when it is set"}},
        .files = {},
        .signals = {{"SIGINT, SIGTERM, SIGHUP", "end it cleanly"}},
        .example = "krt9-desktop scenes/editor-10.4.6.json --play",
        .seeAlso = {"krt9ctl(1)", "KRT9Background(8)"},
    };
    return program;
}

}  // namespace desktop
