// Desktop, companion and driver of a stage together: with the editor in front, and whether they
// work.
#pragma once

#include <string>

#include "tests/support/Stage.h"

namespace test_support {

// Starts all three. The driver is the impatient one: with it, and with a desktop on which calls to
// a stopped session time out after a second, no reply takes ten seconds.
void StartTogether(Stage& stage);

// The driver answers a request that does not need the desktop.
bool DriverAnswers();

// The driver follows the editor on the desktop: it answers with what is shown there. Waits until it
// does; false after ten seconds.
bool DriverSeesTheEditor();

// The driver is told to follow the timecode, the playhead moves, and the companion is notified.
bool CompanionHears(Stage& stage, const std::string& timecode);

}  // namespace test_support
