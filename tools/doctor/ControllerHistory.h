// Whether the driver connected to the controller when it started. The two systems have nothing in
// common here: there is one source for each.
#pragma once

#include <CoreMIDI/CoreMIDI.h>

#include <string>

namespace krt9ctl::doctor {

struct ControllerHistory {
    enum class Connection { made, missed, unknown };
    Connection connection = Connection::unknown;
    std::string evidence;
};

// `source` is the one of the controller that is on the bus now. The time-out is in seconds.
ControllerHistory HistoryOfController(MIDIEndpointRef source, double timeout);

}  // namespace krt9ctl::doctor
