#include "driver/CVEK_UserSpaceDriver.h"

#include "VEKCommon/Names.h"

#include <cstdlib>
#include <cstring>

#import <AppKit/AppKit.h>
#include <syslog.h>

CVEK_UserSpaceDriver* CVEK_UserSpaceDriver::sSelf = nullptr;
char CVEK_UserSpaceDriver::sDebugStr[1024];

namespace {

// The text of `version` if it fits `capacity` bytes with its terminator, else "unknown version".
void CopyVersion(id version, char* out, NSUInteger capacity) {
    const bool copied = [version isKindOfClass:[NSString class]] &&
                        [version getCString:out
                                  maxLength:capacity
                                   encoding:[NSString defaultCStringEncoding]];
    if (!copied) {
        strncpy(out, "unknown version", capacity);
    }
}

CFMutableStringRef NewTimecodeText() {
    return CFStringCreateMutable(kCFAllocatorDefault, 64);
}

}  // namespace

CVEK_UserSpaceDriver::CVEK_UserSpaceDriver()
    : statusValid(false),
      spareFlag(false),
      connectState(false),
      midiClient(0),
      localeSent(false),
      localPort(CFSTR(kDriverPortName), MessageCallbackEntry, nullptr, nullptr),
      remotePort(nullptr),
      runLoopSource(nullptr),
      sparePointer(nullptr),
      fcpxProfile(kProfileForOtherVersions) {
    @autoreleasepool {
        NSBundle* bundle = [NSBundle mainBundle];
        id version = [bundle objectForInfoDictionaryKey:@"CFBundleVersion"];
        CopyVersion(version, versionString, sizeof versionString);
        NSLog(@"%@ version %@\n", [bundle bundleIdentifier], version);
    }

    observeClipSelection = false;
    observeTimelineTimecode = false;
    timelineIndexVisible = false;
    timelineIndexChanged = false;
    lastTimecode = NewTimecodeText();
    unitCount = 1;
    channelCount = 0;
    statusReserved = 0;

    sSelf = this;

    // Without a port nothing can reach the driver, and the process stays idle.
    runLoopSource = localPort.GetRunLoopSource();
    if (runLoopSource == nullptr) {
        return;
    }
    CFRunLoopAddSource(CFRunLoopGetCurrent(), runLoopSource, kCFRunLoopCommonModes);

    MIDISignIn();
    remotePort = new CACFRemoteMessagePort(CFSTR(kCompanionPortName), nullptr);
    // Unreachable: without a port there is no source, and the constructor has returned above.
    if (!localPort.IsValid()) {
        syslog(LOG_EMERG, "local Port is not valid");
    }
    if (!remotePort->IsValid()) {
        syslog(LOG_EMERG, "remotePort is not valid");
    }
    TriggerAXAlert();
    StartTimeoutCounter();
}

// Neither clears sSelf nor releases lastTimecode: the process ends right afterwards.
CVEK_UserSpaceDriver::~CVEK_UserSpaceDriver() {
    StopTimeoutCounter();
    delete remotePort;
    MIDISignOut();
}

// Deletes the object outright: the signal is delivered only while the run loop waits, so that
// nothing is interrupted half-way (driver/Interrupts.h).
void CVEK_UserSpaceDriver::SignalHandler(int) {
    delete sSelf;
    exit(0);
}

void CVEK_UserSpaceDriver::Run() {
    CFRunLoopRun();
}

void CVEK_UserSpaceDriver::TriggerAXAlert() {
    @autoreleasepool {
        NSDictionary* options =
            [NSDictionary dictionaryWithObject:@(YES)
                                        forKey:(NSString*)kAXTrustedCheckOptionPrompt];
        const Boolean trusted = AXIsProcessTrustedWithOptions((CFDictionaryRef)options);
        NSLog(@"accessibilityEnabled = %d\n", trusted);
    }
}
