// Sends requests to the driver's message port.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "companion/KRT9Companion.h"
#include "tools/Delivery.h"
#include "tools/Request.h"

namespace krt9ctl {

// The run loop runs in this mode while a reply is awaited. It is a separate mode, so that nothing
// else that is scheduled in the process runs meanwhile.
CFStringRef ReplyMode();

class Client {
  public:
    // `timeout` in seconds, for sending and once more for the reply.
    explicit Client(double timeout) : driver_(timeout, ReplyMode()) {}

    void SetTimeout(double timeout) { driver_.SetTimeout(timeout); }

    // Waits for the reply, which every request gets, even if it is empty. The port is looked
    // up with the first request, and again with the first one after its end was noticed.
    Answer Send(const Request& request);

  private:
    krt9::Driver driver_;
};

}  // namespace krt9ctl
