// The folder that represents the log-in session: it contains every socket of the session.
#pragma once

#include <string>

#include "platform/LocalSocket/Socket.h"

namespace local_socket {

enum class IfMissing { make, leave };

// Opens the session's folder. Without a descriptor in the result the folder is refused, and
// `problem` holds one line that says why; it stays empty when the folder is merely missing and is
// not to be created.
//
// The folder is $KRT9_SESSION_DIR if that is set, else $XDG_RUNTIME_DIR/krt9, else /tmp/krt9-UID.
// It is refused unless it is a real folder (not a symbolic link), owned by this user, with mode
// 0700. `problem` is never null.
Descriptor OpenSessionDirectory(IfMissing ifMissing, std::string* problem);

// The same folder as a path, for messages.
std::string SessionDirectoryPath();

// That of a process of this user whose variables have these values; null or empty for those that
// are not set.
std::string SessionDirectoryPath(const char* sessionVariable, const char* runtimeVariable);

}  // namespace local_socket
