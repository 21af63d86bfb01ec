// The tests' view of the driver's fields.
#pragma once

#include "driver/CVEK_UserSpaceDriver.h"

struct DriverInspector {
    using Driver = CVEK_UserSpaceDriver;

    static unsigned short& UnitCount(Driver& driver) { return driver.unitCount; }
    static unsigned short& ChannelCount(Driver& driver) { return driver.channelCount; }
    static unsigned short& StatusReserved(Driver& driver) { return driver.statusReserved; }
    static bool& StatusValid(Driver& driver) { return driver.statusValid; }
    static bool& ConnectState(Driver& driver) { return driver.connectState; }
    static CFRunLoopTimerRef& TimeoutTimer(Driver& driver) { return driver.timeoutTimer; }

    static MIDIClientRef& MIDIClient(Driver& driver) { return driver.midiClient; }
    static MIDIObjectRef (&SpareMIDIReferences(Driver& driver))[2] {
        return driver.spareMIDIReferences;
    }
    static MIDIPortRef& InputPort(Driver& driver) { return driver.inputPort; }
    static MIDIPortRef& OutputPort(Driver& driver) { return driver.outputPort; }
    static MIDIEndpointRef& SourceEndpoint(Driver& driver) { return driver.sourceEndpoint; }
    static MIDIEndpointRef& DestinationEndpoint(Driver& driver) {
        return driver.destinationEndpoint;
    }
    static bool& Connected(Driver& driver) { return driver.connected; }

    static bool& LocaleSent(Driver& driver) { return driver.localeSent; }
    static char (&Language(Driver& driver))[32] { return driver.language; }
    static CACFLocalMessagePort& LocalPort(Driver& driver) { return driver.localPort; }
    static CACFRemoteMessagePort*& RemotePort(Driver& driver) { return driver.remotePort; }
    static CFRunLoopSourceRef& RunLoopSource(Driver& driver) { return driver.runLoopSource; }

    static VEK_C_AXUtils& AXUtils(Driver& driver) { return driver.axUtils; }
    static bool& ObserveClipSelection(Driver& driver) { return driver.observeClipSelection; }
    static bool& ObserveTimelineTimecode(Driver& driver) { return driver.observeTimelineTimecode; }
    static bool& TimelineIndexVisible(Driver& driver) { return driver.timelineIndexVisible; }
    static bool& TimelineIndexChanged(Driver& driver) { return driver.timelineIndexChanged; }
    static pid_t& FrontAppPID(Driver& driver) { return driver.frontAppPID; }
    static long long& LastClipRow(Driver& driver) { return driver.lastClipRow; }
    static CFMutableStringRef& LastTimecode(Driver& driver) { return driver.lastTimecode; }
    static char (&LastClipName(Driver& driver))[1024] { return driver.lastClipName; }
    static char (&VersionString(Driver& driver))[32] { return driver.versionString; }
    static int& Profile(Driver& driver) { return driver.fcpxProfile; }
    static VEK_EventPoster& EventPoster(Driver& driver) { return driver.eventPoster; }
};
