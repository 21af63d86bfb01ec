// The simulated desktop's log has each connection.
#include <fmt/format.h>

#include "VEKCommon/Names.h"
#include "tools/DesktopScript.h"
#include "tools/doctor/ControllerHistory.h"

namespace krt9ctl::doctor {

ControllerHistory HistoryOfController(MIDIEndpointRef source, double timeout) {
    using Connection = ControllerHistory::Connection;
    const auto reply = AskDesktop({{"command", "log"}}, timeout);
    if (!reply || !reply->contains("entries")) {
        return {Connection::unknown, "the desktop does not show its log"};
    }
    const Json& log = (*reply)["entries"];
    ControllerHistory history{Connection::missed,
                              "the desktop's log has no connection to it: the driver looks for a "
                              "controller only when it starts"};
    for (const Json& entry : log) {
        const std::string what = entry.value("midi", "");
        if (what == "connect" && entry.value("source", MIDIEndpointRef{}) == source &&
            entry.value("error", -1) == 0) {
            history = {Connection::made,
                       fmt::format("entry {} of the desktop's log", entry.value("n", 0))};
        } else if (what == "plug" && entry.value("device", "") == kControllerDevice) {
            history = {Connection::missed,
                       fmt::format("it was plugged in (entry {} of the desktop's log) after the "
                                   "driver started",
                                   entry.value("n", 0))};
        }
    }
    const bool isWhole = reply->value("last", 0) == 0 || (!log.empty() && log[0]["n"] == 1);
    if (history.connection == Connection::missed && !isWhole) {
        return {Connection::unknown, "the beginning of the desktop's log was cleared"};
    }
    return history;
}

}  // namespace krt9ctl::doctor
