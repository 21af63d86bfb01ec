#include "tools/doctor/ControllerHistory.h"

namespace krt9ctl::doctor {

ControllerHistory HistoryOfController(MIDIEndpointRef /*source*/, double /*timeout*/) {
    return {ControllerHistory::Connection::unknown,
            "macOS does not tell since when, nor who is connected to it: a controller that was "
            "plugged in after the driver started is not used"};
}

}  // namespace krt9ctl::doctor
