// Loaded into the driver's process before the platform layer (LD_PRELOAD): writes down the calls of
// its life cycle, one line each, to the file named by KRT9_CALL_TRACE, and passes them on. With
// KRT9_RUN_LOOP_RETURNS in the environment the run loop that `main` runs returns at once.

#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <dlfcn.h>

#import <AppKit/AppKit.h>
#include <ApplicationServices/ApplicationServices.h>
#include <CoreFoundation/CoreFoundation.h>
#include <CoreMIDI/CoreMIDI.h>
#include <objc/runtime.h>

namespace {

void Record(const char* line) {
    static FILE* const file = fopen(getenv("KRT9_CALL_TRACE"), "we");
    fprintf(file, "%s\n", line);
    fflush(file);
}

// The frameworks call each other as well; only what the driver itself calls is worth a line. Where
// libraries are shared, most of it is in one.
bool IsDriver(const void* caller) {
    Dl_info info;
    if (dladdr(caller, &info) == 0) {
        return false;
    }
    const std::string_view file = info.dli_fname;
    return file.ends_with("KRT9Background") || file.ends_with("libkrt9_driver.so");
}

template <typename Function>
Function* Next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// Objects whose release is worth a line.
struct Owned {
    CFTypeRef object;
    const char* line;
};
Owned owned[8];
int ownedCount = 0;

template <typename Reference>
Reference Remember(Reference object, const char* line) {
    if (object != nullptr && ownedCount < 8) {
        owned[ownedCount++] = {object, line};
    }
    return object;
}

IMP originalObserve;
IMP originalRun;

void TracedObserve(id self, SEL command) {
    Record("observe front application");
    reinterpret_cast<void (*)(id, SEL)>(originalObserve)(self, command);
}

void TracedRun(id self, SEL command) {
    Record("run loop runs");
    if (getenv("KRT9_RUN_LOOP_RETURNS") != nullptr) {
        return;
    }
    reinterpret_cast<void (*)(id, SEL)>(originalRun)(self, command);
}

// What the driver starts (a sanitizer's symbolizer) is not traced.
[[gnu::constructor]] void StayInThisProcess() {
    unsetenv("LD_PRELOAD");
}

IMP Replace(const char* className, const char* selector, IMP replacement) {
    Class target = static_cast<Class>(objc_getClass(className));
    Method method = class_getInstanceMethod(target, sel_registerName(selector));
    return method_setImplementation(method, replacement);
}

}  // namespace

#define NEXT(function) Next<decltype(function)>(#function)
#define RECORD(line)                             \
    if (IsDriver(__builtin_return_address(0))) { \
        Record(line);                            \
    }

extern "C" {

// The first step of main: by now every class of the program is registered.
sighandler_t signal(int number, sighandler_t handler) noexcept {
    if (number == SIGINT) {
        RECORD("signal SIGINT")
        originalObserve =
            Replace("VEK_Driver_FrontAppObserver", "observe", reinterpret_cast<IMP>(TracedObserve));
        originalRun = Replace("NSRunLoop", "run", reinterpret_cast<IMP>(TracedRun));
    }
    return NEXT(signal)(number, handler);
}

CFMessagePortRef CFMessagePortCreateLocal(CFAllocatorRef allocator, CFStringRef name,
                                          CFMessagePortCallBack callout,
                                          CFMessagePortContext* context, Boolean* shouldFreeInfo) {
    RECORD("create local port")
    return NEXT(CFMessagePortCreateLocal)(allocator, name, callout, context, shouldFreeInfo);
}

CFMessagePortRef CFMessagePortCreateRemote(CFAllocatorRef allocator, CFStringRef name) {
    RECORD("create remote port")
    return Remember(NEXT(CFMessagePortCreateRemote)(allocator, name), "release remote port");
}

void CFMessagePortInvalidate(CFMessagePortRef port) {
    RECORD("invalidate local port")
    NEXT(CFMessagePortInvalidate)(port);
}

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks) {
    RECORD("create element cache")
    return Remember(
        NEXT(CFDictionaryCreateMutable)(allocator, capacity, keyCallBacks, valueCallBacks),
        "release element cache");
}

CGEventRef CGEventCreate(CGEventSourceRef source) {
    RECORD("create empty event")
    return NEXT(CGEventCreate)(source);
}

CGEventSourceRef CGEventSourceCreate(CGEventSourceStateID state) {
    RECORD("create event source")
    return Remember(NEXT(CGEventSourceCreate)(state), "release event source");
}

CFMutableStringRef CFStringCreateMutable(CFAllocatorRef allocator, CFIndex maxLength) {
    RECORD(maxLength == 64 ? "create last timecode" : "create a text")
    return NEXT(CFStringCreateMutable)(allocator, maxLength);
}

void CFRunLoopAddSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode mode) {
    if (mode == kCFRunLoopCommonModes) {
        RECORD("add source in common modes")
    }
    NEXT(CFRunLoopAddSource)(loop, source, mode);
}

OSStatus MIDIClientCreate(CFStringRef name, MIDINotifyProc notify, void* context,
                          MIDIClientRef* client) {
    RECORD("sign in to MIDI")
    return NEXT(MIDIClientCreate)(name, notify, context, client);
}

Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef options) {
    RECORD("ask for trust")
    return NEXT(AXIsProcessTrustedWithOptions)(options);
}

void CFRunLoopAddTimer(CFRunLoopRef loop, CFRunLoopTimerRef timer, CFRunLoopMode mode) {
    RECORD(mode == kCFRunLoopDefaultMode ? "add timer in default mode" : "add timer")
    NEXT(CFRunLoopAddTimer)(loop, timer, mode);
}

void CFRunLoopRemoveTimer(CFRunLoopRef loop, CFRunLoopTimerRef timer, CFRunLoopMode mode) {
    RECORD(mode == kCFRunLoopDefaultMode ? "remove timer from default mode" : "remove timer")
    NEXT(CFRunLoopRemoveTimer)(loop, timer, mode);
}

void CFRelease(CFTypeRef object) {
    for (Owned& entry : owned) {
        if (entry.object == object && IsDriver(__builtin_return_address(0))) {
            Record(entry.line);
            entry.object = nullptr;
        }
    }
    NEXT(CFRelease)(object);
}

void NSLog(NSString* format, ...) {
    if ([format isEqualToString:@"%@ version %@\n"]) {
        RECORD("log version")
    }
    va_list arguments;
    va_start(arguments, format);
    NSLogv(format, arguments);
    va_end(arguments);
}

void syslog(int priority, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    char line[256];
    vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    RECORD(line)
    NEXT(syslog)(priority, "%s", line);
}

}  // extern "C"
