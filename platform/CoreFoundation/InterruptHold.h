// Keeps SIGINT from interrupting the main thread anywhere but where it waits.
//
// A program may tear everything down in its handler, which is safe only while nothing is under way:
// no lock is held, no callback runs, no memory is being allocated. So the signal is blocked on the
// main thread as soon as that thread has a run loop or a port and the program has a handler, and
// let through by the waits of the loop alone. Threads and programs started afterwards inherit the
// block.
#pragma once

#include <csignal>

namespace run_loop {

bool OnMainThread();

// Begins to hold the signal back if the program handles it. Only on the main thread does it do
// anything.
void HoldInterrupts();

// The mask to wait with on this thread; null for the thread's own.
const sigset_t* WaitMask();

// A wait that finds something ready at once lets no signal through. Called after every such wait,
// it lets one through from time to time, so that a busy loop can be interrupted too.
void LetInterruptsThroughIfStarved();
void InterruptsWereLetThrough();

}  // namespace run_loop
