#include <CoreFoundation/CFRunLoop.h>
#include <CoreFoundation/CFString.h>

#include <cmath>

#include "platform/CoreFoundation/RunLoop/RunLoop.h"

using core_foundation::Implementation;
using core_foundation::Retained;
using run_loop::Observer;
using run_loop::RunLoop;
using run_loop::SignalledSource;
using run_loop::Source;
using run_loop::Timer;

extern "C" {
const CFRunLoopMode kCFRunLoopDefaultMode = CFSTR("kCFRunLoopDefaultMode");
const CFRunLoopMode kCFRunLoopCommonModes = CFSTR("kCFRunLoopCommonModes");
}

CFTypeID CFRunLoopGetTypeID(void) {
    static const CFTypeID type = core_foundation::RegisterType("CFRunLoop");
    return type;
}

CFRunLoopRef CFRunLoopGetCurrent(void) {
    return RunLoop::Current().Ref();
}

CFRunLoopRef CFRunLoopGetMain(void) {
    return RunLoop::Main().Ref();
}

CFRunLoopMode CFRunLoopCopyCurrentMode(CFRunLoopRef rl) {
    return Implementation<RunLoop>(rl, __func__).CopyCurrentMode();
}

Boolean CFRunLoopIsWaiting(CFRunLoopRef rl) {
    return Implementation<RunLoop>(rl, __func__).IsWaiting();
}

void CFRunLoopAddCommonMode(CFRunLoopRef rl, CFRunLoopMode mode) {
    Implementation<RunLoop>(rl, __func__).AddCommonMode(mode);
}

void CFRunLoopRun(void) {
    constexpr CFTimeInterval kForEver = 1e10;  // longer than the clock can count
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, kForEver, false);
}

CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode mode, CFTimeInterval seconds,
                                      Boolean returnAfterSourceHandled) {
    return RunLoop::Current().Run(mode, seconds, returnAfterSourceHandled != 0);
}

void CFRunLoopStop(CFRunLoopRef rl) {
    Implementation<RunLoop>(rl, __func__).Stop();
}

void CFRunLoopWakeUp(CFRunLoopRef rl) {
    Implementation<RunLoop>(rl, __func__).WakeUp();
}

void CFRunLoopAddSource(CFRunLoopRef rl, CFRunLoopSourceRef source, CFRunLoopMode mode) {
    Implementation<RunLoop>(rl, __func__).AddSource(Implementation<Source>(source, __func__), mode);
}

void CFRunLoopRemoveSource(CFRunLoopRef rl, CFRunLoopSourceRef source, CFRunLoopMode mode) {
    Implementation<RunLoop>(rl, __func__)
        .RemoveSource(Implementation<Source>(source, __func__), mode);
}

Boolean CFRunLoopContainsSource(CFRunLoopRef rl, CFRunLoopSourceRef source, CFRunLoopMode mode) {
    return Implementation<RunLoop>(rl, __func__)
        .ContainsSource(Implementation<Source>(source, __func__), mode);
}

void CFRunLoopAddTimer(CFRunLoopRef rl, CFRunLoopTimerRef timer, CFRunLoopMode mode) {
    Implementation<RunLoop>(rl, __func__).AddItem(Implementation<Timer>(timer, __func__), mode);
}

void CFRunLoopRemoveTimer(CFRunLoopRef rl, CFRunLoopTimerRef timer, CFRunLoopMode mode) {
    Implementation<RunLoop>(rl, __func__).RemoveItem(Implementation<Timer>(timer, __func__), mode);
}

Boolean CFRunLoopContainsTimer(CFRunLoopRef rl, CFRunLoopTimerRef timer, CFRunLoopMode mode) {
    return Implementation<RunLoop>(rl, __func__)
        .ContainsItem(Implementation<Timer>(timer, __func__), mode);
}

void CFRunLoopAddObserver(CFRunLoopRef rl, CFRunLoopObserverRef observer, CFRunLoopMode mode) {
    Implementation<RunLoop>(rl, __func__)
        .AddItem(Implementation<Observer>(observer, __func__), mode);
}

void CFRunLoopRemoveObserver(CFRunLoopRef rl, CFRunLoopObserverRef observer, CFRunLoopMode mode) {
    Implementation<RunLoop>(rl, __func__)
        .RemoveItem(Implementation<Observer>(observer, __func__), mode);
}

Boolean CFRunLoopContainsObserver(CFRunLoopRef rl, CFRunLoopObserverRef observer,
                                  CFRunLoopMode mode) {
    return Implementation<RunLoop>(rl, __func__)
        .ContainsItem(Implementation<Observer>(observer, __func__), mode);
}

CFTypeID CFRunLoopSourceGetTypeID(void) {
    static const CFTypeID type = core_foundation::RegisterType("CFRunLoopSource");
    return type;
}

CFRunLoopSourceRef CFRunLoopSourceCreate(CFAllocatorRef, CFIndex order,
                                         CFRunLoopSourceContext* context) {
    if (context == nullptr) {
        core_foundation::Stop(__func__, "null context");
    }
    return Retained<SignalledSource>::Adopt(new SignalledSource(order, *context)).HandOver()->Ref();
}

void CFRunLoopSourceSignal(CFRunLoopSourceRef source) {
    auto* signalled = dynamic_cast<SignalledSource*>(&Implementation<Source>(source, __func__));
    if (signalled != nullptr) {
        const std::lock_guard lock(run_loop::StructureMutex());
        signalled->SetSignalled(true);
    }
}

void CFRunLoopSourceInvalidate(CFRunLoopSourceRef source) {
    const Retained keep(&Implementation<Source>(source, __func__));
    keep->Invalidate();
}

Boolean CFRunLoopSourceIsValid(CFRunLoopSourceRef source) {
    const std::lock_guard lock(run_loop::StructureMutex());
    return Implementation<Source>(source, __func__).IsValid();
}

CFTypeID CFRunLoopObserverGetTypeID(void) {
    static const CFTypeID type = core_foundation::RegisterType("CFRunLoopObserver");
    return type;
}

CFRunLoopObserverRef CFRunLoopObserverCreate(CFAllocatorRef, CFOptionFlags activities,
                                             Boolean repeats, CFIndex order,
                                             CFRunLoopObserverCallBack callout,
                                             CFRunLoopObserverContext* context) {
    return Retained<Observer>::Adopt(
               new Observer(activities, repeats != 0, order, callout,
                            context != nullptr ? *context : CFRunLoopObserverContext{}))
        .HandOver()
        ->Ref();
}

void CFRunLoopObserverInvalidate(CFRunLoopObserverRef observer) {
    const Retained keep(&Implementation<Observer>(observer, __func__));
    keep->Invalidate();
}

Boolean CFRunLoopObserverIsValid(CFRunLoopObserverRef observer) {
    return Implementation<Observer>(observer, __func__).IsValid();
}

CFTypeID CFRunLoopTimerGetTypeID(void) {
    static const CFTypeID type = core_foundation::RegisterType("CFRunLoopTimer");
    return type;
}

CFRunLoopTimerRef CFRunLoopTimerCreate(CFAllocatorRef, CFAbsoluteTime fireDate,
                                       CFTimeInterval interval, CFOptionFlags, CFIndex,
                                       CFRunLoopTimerCallBack callout,
                                       CFRunLoopTimerContext* context) {
    if (std::isnan(interval)) {
        core_foundation::Stop(__func__, "the interval is not a number");
    }
    return Retained<Timer>::Adopt(
               new Timer(fireDate, interval, callout,
                         context != nullptr ? *context : CFRunLoopTimerContext{}))
        .HandOver()
        ->Ref();
}

void CFRunLoopTimerInvalidate(CFRunLoopTimerRef timer) {
    const Retained keep(&Implementation<Timer>(timer, __func__));
    keep->Invalidate();
}

Boolean CFRunLoopTimerIsValid(CFRunLoopTimerRef timer) {
    const std::lock_guard lock(run_loop::StructureMutex());
    return Implementation<Timer>(timer, __func__).IsValid();
}

CFTimeInterval CFRunLoopTimerGetInterval(CFRunLoopTimerRef timer) {
    return Implementation<Timer>(timer, __func__).IntervalInSeconds();
}

CFAbsoluteTime CFRunLoopTimerGetNextFireDate(CFRunLoopTimerRef timer) {
    return Implementation<Timer>(timer, __func__).NextFireDate();
}
