// The run loop of a thread: it waits for timers and sources and calls them, one at a time, on that
// thread. Adding, removing, invalidating, signalling, waking and stopping may be done on any
// thread.
#pragma once

#include <CoreFoundation/CFBase.h>

using CFRunLoopMode = CFStringRef;
using CFRunLoopRef = struct __CFRunLoop*;
using CFRunLoopSourceRef = struct __CFRunLoopSource*;
using CFRunLoopTimerRef = struct __CFRunLoopTimer*;
using CFRunLoopObserverRef = struct __CFRunLoopObserver*;

enum CFRunLoopRunResult : SInt32 {
    kCFRunLoopRunFinished = 1,  // nothing to wait for in the mode
    kCFRunLoopRunStopped = 2,
    kCFRunLoopRunTimedOut = 3,
    kCFRunLoopRunHandledSource = 4,
};

struct CFRunLoopSourceContext {
    CFIndex version;  // 0
    void* info;
    const void* (*retain)(const void* info);
    void (*release)(const void* info);
    CFStringRef (*copyDescription)(const void* info);
    Boolean (*equal)(const void* info1, const void* info2);
    CFHashCode (*hash)(const void* info);
    void (*schedule)(void* info, CFRunLoopRef rl, CFRunLoopMode mode);
    void (*cancel)(void* info, CFRunLoopRef rl, CFRunLoopMode mode);
    void (*perform)(void* info);
};

struct CFRunLoopTimerContext {
    CFIndex version;  // 0
    void* info;
    const void* (*retain)(const void* info);
    void (*release)(const void* info);
    CFStringRef (*copyDescription)(const void* info);
};

struct CFRunLoopObserverContext {
    CFIndex version;  // 0
    void* info;
    const void* (*retain)(const void* info);
    void (*release)(const void* info);
    CFStringRef (*copyDescription)(const void* info);
};

// What a run loop is about to do, or has just done.
enum CFRunLoopActivity : CFOptionFlags {
    kCFRunLoopEntry = 1UL << 0,
    kCFRunLoopBeforeTimers = 1UL << 1,
    kCFRunLoopBeforeSources = 1UL << 2,
    kCFRunLoopBeforeWaiting = 1UL << 5,
    kCFRunLoopAfterWaiting = 1UL << 6,
    kCFRunLoopExit = 1UL << 7,
    kCFRunLoopAllActivities = 0x0FFFFFFFU,
};

using CFRunLoopObserverCallBack = void (*)(CFRunLoopObserverRef observer,
                                           CFRunLoopActivity activity, void* info);

using CFRunLoopTimerCallBack = void (*)(CFRunLoopTimerRef timer, void* info);

extern "C" {

extern const CFRunLoopMode kCFRunLoopDefaultMode;
// Not a mode to run in: stands for every mode of the loop's common set.
extern const CFRunLoopMode kCFRunLoopCommonModes;

CFTypeID CFRunLoopGetTypeID(void);
CFRunLoopRef CFRunLoopGetCurrent(void);                   // borrowed
CFRunLoopRef CFRunLoopGetMain(void);                      // borrowed
CFRunLoopMode CFRunLoopCopyCurrentMode(CFRunLoopRef rl);  // null when the loop does not run
Boolean CFRunLoopIsWaiting(CFRunLoopRef rl);

// Adds the mode, with all that is in the common modes, to the loop's common set. The default mode
// is in it from the start.
void CFRunLoopAddCommonMode(CFRunLoopRef rl, CFRunLoopMode mode);

// Runs the default mode until the loop is stopped or has nothing to wait for. The main thread's
// loop always has something to wait for in a mode of the common set.
void CFRunLoopRun(void);

// seconds <= 0 makes one pass without waiting. A null mode and the common modes finish at once.
CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode mode, CFTimeInterval seconds,
                                      Boolean returnAfterSourceHandled);
void CFRunLoopStop(CFRunLoopRef rl);  // the innermost run; nothing when the loop does not run
void CFRunLoopWakeUp(CFRunLoopRef rl);

// A loop retains what is in it. Adding twice is adding once; what is invalid is not added.
void CFRunLoopAddSource(CFRunLoopRef rl, CFRunLoopSourceRef source, CFRunLoopMode mode);
void CFRunLoopRemoveSource(CFRunLoopRef rl, CFRunLoopSourceRef source, CFRunLoopMode mode);
Boolean CFRunLoopContainsSource(CFRunLoopRef rl, CFRunLoopSourceRef source, CFRunLoopMode mode);
// A timer belongs to one run loop: adding it to another one does nothing.
void CFRunLoopAddTimer(CFRunLoopRef rl, CFRunLoopTimerRef timer, CFRunLoopMode mode);
void CFRunLoopRemoveTimer(CFRunLoopRef rl, CFRunLoopTimerRef timer, CFRunLoopMode mode);
Boolean CFRunLoopContainsTimer(CFRunLoopRef rl, CFRunLoopTimerRef timer, CFRunLoopMode mode);
// Like a timer, an observer belongs to one run loop.
void CFRunLoopAddObserver(CFRunLoopRef rl, CFRunLoopObserverRef observer, CFRunLoopMode mode);
void CFRunLoopRemoveObserver(CFRunLoopRef rl, CFRunLoopObserverRef observer, CFRunLoopMode mode);
Boolean CFRunLoopContainsObserver(CFRunLoopRef rl, CFRunLoopObserverRef observer,
                                  CFRunLoopMode mode);

// Called for the activities whose bits are set, the lower its order the earlier; never inside its
// own callback. One that does not repeat is invalid after its first call. A pass that only looks
// (a run of 0 seconds, or one that has performed a signalled source) does not wait and calls
// none for waiting. Observers alone do not keep a run going.
CFTypeID CFRunLoopObserverGetTypeID(void);
CFRunLoopObserverRef CFRunLoopObserverCreate(CFAllocatorRef allocator, CFOptionFlags activities,
                                             Boolean repeats, CFIndex order,
                                             CFRunLoopObserverCallBack callout,
                                             CFRunLoopObserverContext* context);
void CFRunLoopObserverInvalidate(CFRunLoopObserverRef observer);
Boolean CFRunLoopObserverIsValid(CFRunLoopObserverRef observer);

// A version-0 source: performed by the next pass of its loop after it is signalled. Signalling does
// not wake the loop. The lower the order, the earlier among the signalled ones.
CFTypeID CFRunLoopSourceGetTypeID(void);
CFRunLoopSourceRef CFRunLoopSourceCreate(CFAllocatorRef allocator, CFIndex order,
                                         CFRunLoopSourceContext* context);
void CFRunLoopSourceSignal(CFRunLoopSourceRef source);
void CFRunLoopSourceInvalidate(CFRunLoopSourceRef source);
Boolean CFRunLoopSourceIsValid(CFRunLoopSourceRef source);

// A fire date in the past counts as now. An interval <= 0 makes a timer that fires once and is then
// invalid. A repeating timer stays on the grid of its fire date; dates that pass while it fires, or
// before its loop gets to it, are left out. It never fires inside its own callback. Flags are 0.
CFTypeID CFRunLoopTimerGetTypeID(void);
CFRunLoopTimerRef CFRunLoopTimerCreate(CFAllocatorRef allocator, CFAbsoluteTime fireDate,
                                       CFTimeInterval interval, CFOptionFlags flags, CFIndex order,
                                       CFRunLoopTimerCallBack callout,
                                       CFRunLoopTimerContext* context);
void CFRunLoopTimerInvalidate(CFRunLoopTimerRef timer);
Boolean CFRunLoopTimerIsValid(CFRunLoopTimerRef timer);
CFTimeInterval CFRunLoopTimerGetInterval(CFRunLoopTimerRef timer);      // 0: fires once
CFAbsoluteTime CFRunLoopTimerGetNextFireDate(CFRunLoopTimerRef timer);  // 0 when invalid

}  // extern "C"
