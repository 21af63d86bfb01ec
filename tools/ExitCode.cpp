#include "tools/ExitCode.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace krt9ctl {

namespace {

constexpr std::array kExitCodes{
    ExitCodeRow{ExitCode::ok, "ok", "done; every reply that was due came"},
    ExitCodeRow{ExitCode::failure, "failure", "an error of krt9ctl or of the system"},
    ExitCodeRow{ExitCode::usage, "usage", "the command line is wrong; nothing was sent"},
    ExitCodeRow{ExitCode::noDriver, "no-driver", "no driver runs (its port does not exist)"},
    ExitCodeRow{ExitCode::noReply, "no-reply",
                "the driver sent no reply where one was due: the request failed"},
    ExitCodeRow{ExitCode::timeOut, "time-out",
                "the driver did not take or answer in time; the request may still take effect"},
    ExitCodeRow{ExitCode::transport, "transport", "the connection to the driver failed"},
    ExitCodeRow{ExitCode::badReply, "bad-reply", "the reply does not have the form it should have"},
    ExitCodeRow{ExitCode::nameTaken, "name-taken",
                "another process (the companion?) owns the port to watch"},
    ExitCodeRow{ExitCode::noDesktop, "no-desktop", "no simulated desktop runs, or it hangs"},
    ExitCodeRow{ExitCode::refused, "refused", "the simulated desktop refused the command"},
    ExitCodeRow{ExitCode::accessibility, "accessibility",
                "the application's accessibility tree cannot be read"},
    ExitCodeRow{ExitCode::outOfReach, "out-of-reach",
                "the element is there, but the driver's search does not find it"},
    ExitCodeRow{ExitCode::notThere, "not-there", "the application has no such element"},
    ExitCodeRow{ExitCode::unmet, "unmet",
                "what --expect or wait asks for was not so in time, or was so before; after panic "
                "something is still pressed"},
    ExitCodeRow{ExitCode::differs, "differs",
                "replay: replies or messages are not as they were recorded"},
    ExitCodeRow{ExitCode::badReport, "bad-report",
                "replay: the file is no report or recording that can be replayed"},
    ExitCodeRow{ExitCode::companion, "companion",
                "doctor: the driver's messages do not reach a companion"},
    ExitCodeRow{ExitCode::permission, "permission",
                "doctor: the driver lacks the accessibility permission"},
    ExitCodeRow{ExitCode::front, "front", "doctor: the editor is not in front"},
    ExitCodeRow{ExitCode::controls, "controls",
                "doctor: controls that the driver follows are not found"},
    ExitCodeRow{ExitCode::controller, "controller",
                "doctor: the driver is not connected to a controller"},
    ExitCodeRow{ExitCode::translations, "translations",
                "doctor: there are no translated titles, or they cannot be read"},
    ExitCodeRow{ExitCode::versions, "versions",
                "doctor: driver and krt9ctl have different versions"},
    ExitCodeRow{ExitCode::secondDriver, "second-driver",
                "doctor: a second driver runs, which does nothing"},
    ExitCodeRow{ExitCode::hungUp, "hung-up", "stopped by SIGHUP before the end"},
    ExitCodeRow{ExitCode::interrupted, "interrupted", "stopped by SIGINT before the end"},
    ExitCodeRow{ExitCode::pipeClosed, "pipe-closed", "nobody reads the output any more"},
    ExitCodeRow{ExitCode::terminated, "terminated", "stopped by SIGTERM before the end"},
};

}  // namespace

std::span<const ExitCodeRow> ExitCodes() {
    return kExitCodes;
}

std::string_view ExitCodeName(ExitCode code) {
    const auto* row = std::find_if(kExitCodes.begin(), kExitCodes.end(),
                                   [code](const ExitCodeRow& each) { return each.code == code; });
    return row == kExitCodes.end() ? "failure" : row->name;
}

std::string ExitCodeHelp() {
    std::string text = "Exit codes:\n";
    for (const ExitCodeRow& row : kExitCodes) {
        text +=
            fmt::format("  {:>3}  {:<13}  {}\n", static_cast<int>(row.code), row.name, row.meaning);
    }
    return text;
}

}  // namespace krt9ctl
