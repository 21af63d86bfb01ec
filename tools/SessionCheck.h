// Whether the place where the driver's and the desktop's sockets lie can be trusted. The two
// systems have nothing in common here: one source for each.
#pragma once

namespace krt9ctl {

// Throws std::runtime_error, with one line that names the path and says why, when the session's
// folder or what lies under one of its names is refused. A session that is not there yet is none.
void CheckSession();

}  // namespace krt9ctl
