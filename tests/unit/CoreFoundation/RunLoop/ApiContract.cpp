// The declarations of run loops and message ports must be those of macOS, so that one source
// compiles for both. Checked by the compiler.
#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>
#include <type_traits>

namespace {

template <typename Declared, typename Expected>
constexpr bool kIs = std::is_same_v<Declared, Expected>;

// CFDate.h
static_assert(kIs<decltype(CFAbsoluteTimeGetCurrent), CFAbsoluteTime()>);

// CFRunLoop.h
static_assert(kIs<CFRunLoopMode, CFStringRef>);
static_assert(kIs<CFRunLoopTimerCallBack, void (*)(CFRunLoopTimerRef, void*)>);
static_assert(kIs<decltype(CFRunLoopGetCurrent), CFRunLoopRef()>);
static_assert(kIs<decltype(CFRunLoopGetMain), CFRunLoopRef()>);
static_assert(kIs<decltype(CFRunLoopCopyCurrentMode), CFRunLoopMode(CFRunLoopRef)>);
static_assert(kIs<decltype(CFRunLoopRun), void()>);
static_assert(
    kIs<decltype(CFRunLoopRunInMode), CFRunLoopRunResult(CFRunLoopMode, CFTimeInterval, Boolean)>);
static_assert(kIs<decltype(CFRunLoopStop), void(CFRunLoopRef)>);
static_assert(kIs<decltype(CFRunLoopWakeUp), void(CFRunLoopRef)>);
static_assert(
    kIs<decltype(CFRunLoopAddSource), void(CFRunLoopRef, CFRunLoopSourceRef, CFRunLoopMode)>);
static_assert(
    kIs<decltype(CFRunLoopRemoveSource), void(CFRunLoopRef, CFRunLoopSourceRef, CFRunLoopMode)>);
static_assert(
    kIs<decltype(CFRunLoopAddTimer), void(CFRunLoopRef, CFRunLoopTimerRef, CFRunLoopMode)>);
static_assert(
    kIs<decltype(CFRunLoopRemoveTimer), void(CFRunLoopRef, CFRunLoopTimerRef, CFRunLoopMode)>);
static_assert(
    kIs<CFRunLoopObserverCallBack, void (*)(CFRunLoopObserverRef, CFRunLoopActivity, void*)>);
static_assert(
    kIs<decltype(CFRunLoopAddObserver), void(CFRunLoopRef, CFRunLoopObserverRef, CFRunLoopMode)>);
static_assert(kIs<decltype(CFRunLoopRemoveObserver),
                  void(CFRunLoopRef, CFRunLoopObserverRef, CFRunLoopMode)>);
static_assert(kIs<decltype(CFRunLoopContainsObserver),
                  Boolean(CFRunLoopRef, CFRunLoopObserverRef, CFRunLoopMode)>);
static_assert(kIs<decltype(CFRunLoopObserverCreate),
                  CFRunLoopObserverRef(CFAllocatorRef, CFOptionFlags, Boolean, CFIndex,
                                       CFRunLoopObserverCallBack, CFRunLoopObserverContext*)>);
static_assert(kIs<decltype(CFRunLoopObserverInvalidate), void(CFRunLoopObserverRef)>);
static_assert(kIs<decltype(CFRunLoopObserverIsValid), Boolean(CFRunLoopObserverRef)>);
static_assert(kIs<std::underlying_type_t<CFRunLoopActivity>, CFOptionFlags>);
static_assert(kCFRunLoopEntry == 1 && kCFRunLoopBeforeTimers == 2 && kCFRunLoopBeforeSources == 4 &&
              kCFRunLoopBeforeWaiting == 32 && kCFRunLoopAfterWaiting == 64 &&
              kCFRunLoopExit == 128 && kCFRunLoopAllActivities == 0x0FFFFFFF);
static_assert(sizeof(CFRunLoopObserverContext) == 40);
static_assert(kIs<decltype(CFRunLoopSourceCreate),
                  CFRunLoopSourceRef(CFAllocatorRef, CFIndex, CFRunLoopSourceContext*)>);
static_assert(kIs<decltype(CFRunLoopSourceSignal), void(CFRunLoopSourceRef)>);
static_assert(kIs<decltype(CFRunLoopSourceInvalidate), void(CFRunLoopSourceRef)>);
static_assert(kIs<decltype(CFRunLoopSourceIsValid), Boolean(CFRunLoopSourceRef)>);
static_assert(kIs<decltype(CFRunLoopTimerCreate),
                  CFRunLoopTimerRef(CFAllocatorRef, CFAbsoluteTime, CFTimeInterval, CFOptionFlags,
                                    CFIndex, CFRunLoopTimerCallBack, CFRunLoopTimerContext*)>);
static_assert(kIs<decltype(CFRunLoopTimerInvalidate), void(CFRunLoopTimerRef)>);
static_assert(kIs<decltype(CFRunLoopTimerIsValid), Boolean(CFRunLoopTimerRef)>);
static_assert(kIs<decltype(CFRunLoopTimerGetInterval), CFTimeInterval(CFRunLoopTimerRef)>);
static_assert(kIs<decltype(CFRunLoopTimerGetNextFireDate), CFAbsoluteTime(CFRunLoopTimerRef)>);
static_assert(kIs<std::underlying_type_t<CFRunLoopRunResult>, SInt32>);
static_assert(kCFRunLoopRunFinished == 1 && kCFRunLoopRunStopped == 2 &&
              kCFRunLoopRunTimedOut == 3 && kCFRunLoopRunHandledSource == 4);
static_assert(sizeof(CFRunLoopTimerContext) == 40);
static_assert(sizeof(CFRunLoopSourceContext) == 80);
static_assert(offsetof(CFRunLoopSourceContext, perform) == 72);

// CFMessagePort.h
static_assert(
    kIs<CFMessagePortCallBack, CFDataRef (*)(CFMessagePortRef, SInt32, CFDataRef, void*)>);
static_assert(kIs<CFMessagePortInvalidationCallBack, void (*)(CFMessagePortRef, void*)>);
static_assert(kIs<decltype(CFMessagePortGetTypeID), CFTypeID()>);
static_assert(kIs<decltype(CFMessagePortCreateLocal),
                  CFMessagePortRef(CFAllocatorRef, CFStringRef, CFMessagePortCallBack,
                                   CFMessagePortContext*, Boolean*)>);
static_assert(
    kIs<decltype(CFMessagePortCreateRemote), CFMessagePortRef(CFAllocatorRef, CFStringRef)>);
static_assert(kIs<decltype(CFMessagePortCreateRunLoopSource),
                  CFRunLoopSourceRef(CFAllocatorRef, CFMessagePortRef, CFIndex)>);
static_assert(kIs<decltype(CFMessagePortSendRequest),
                  SInt32(CFMessagePortRef, SInt32, CFDataRef, CFTimeInterval, CFTimeInterval,
                         CFStringRef, CFDataRef*)>);
static_assert(kIs<decltype(CFMessagePortInvalidate), void(CFMessagePortRef)>);
static_assert(kIs<decltype(CFMessagePortIsValid), Boolean(CFMessagePortRef)>);
static_assert(kIs<decltype(CFMessagePortGetName), CFStringRef(CFMessagePortRef)>);
static_assert(kIs<decltype(CFMessagePortSetInvalidationCallBack),
                  void(CFMessagePortRef, CFMessagePortInvalidationCallBack)>);
static_assert(kCFMessagePortSuccess == 0 && kCFMessagePortSendTimeout == -1 &&
              kCFMessagePortReceiveTimeout == -2 && kCFMessagePortIsInvalid == -3 &&
              kCFMessagePortTransportError == -4 && kCFMessagePortBecameInvalidError == -5);
static_assert(sizeof(CFMessagePortContext) == 40);

}  // namespace
