// What this process remembers of the log-in session. Main thread only.
#pragma once

#include <optional>

#include "platform/DesktopLink/Messages.h"

namespace desktop_link {

// The front application as of the last notification that the main run loop delivered; none when
// nothing is in front or no desktop runs. Asks the desktop at first use.
const std::optional<Application>& FrontApplication();

// Grows whenever FrontApplication() may have changed.
unsigned long FrontApplicationRevision();

// From now on `handler`, which must not be null, is called on the main run loop after each change
// of the front application, with what came to the front by it; by then something else may be in
// front. There is one handler; it stays when the transport is replaced.
using FrontApplicationHandler = void (*)(const std::optional<Application>& activated);
void ObserveFrontApplication(FrontApplicationHandler handler);

// Seconds that an accessibility call waits unless it is set otherwise. Asks the desktop at first
// use; the usual 6 s while no desktop runs.
double MessagingTimeout();

// Seconds that any other call to the session waits.
inline constexpr double kSystemTimeout = 6.0;

// For transports: a new connection was made. Its front application comes as a notification.
void AdoptMessagingTimeout(double seconds);

// For transports: forgets everything, so that the next use asks again.
void ForgetSession();

}  // namespace desktop_link
