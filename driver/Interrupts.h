// When SIGINT may interrupt the process. The handler deletes the driver, so it must never run while
// a request, a tick or a notification is in progress, nor inside a function that it calls itself.
#pragma once

// Blocks SIGINT on this thread, and so on all threads started afterwards, and unblocks it while the
// thread's run loop waits. A signal that arrives at another time stays pending until then. A run of
// the loop inside one of its callbacks does not unblock it. To be called once, on the main thread,
// before the loop runs.
void AllowInterruptsOnlyWhileWaiting();
