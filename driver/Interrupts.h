// When SIGINT may interrupt the process. The handler deletes the driver, so it must never run while
// a request, a tick or a notification is half done, nor inside a function that it calls itself.
#pragma once

// Blocks SIGINT on this thread, and with it on all threads started afterwards, and lets it in
// wherever the thread's run loop is about to wait, until the wait is over. A signal that came
// meanwhile is delivered then. Not in a run of the loop inside a callback of the loop. To be called
// once, on the main thread, before the loop runs.
void AllowInterruptsOnlyWhileWaiting();
