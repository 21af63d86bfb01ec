// What the poster asks of Quartz, where the event does not show it: a mouse event of a left type is
// the left button's whatever button was asked for. This program's functions take the place of the
// framework's, write the call down and pass it on.
#pragma once

#include <string>
#include <vector>

// Calls of CGEventCreate, CGEventSourceCreate and CGEventCreateMouseEvent, in order, such as
// "CGEventCreateMouseEvent(null, 5, 0)": the source, the type and the button.
std::vector<std::string>& QuartzCalls();
