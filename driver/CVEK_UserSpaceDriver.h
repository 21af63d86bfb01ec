// The one driver object: it owns every long-lived resource of the process and is the receiver of
// every callback. Its members are defined in the folder of their subsystem; the heading of each
// group below names it. Everything runs on the main thread, from the main run loop.
#pragma once

#include <string>

#include <ApplicationServices/ApplicationServices.h>
#include <CoreFoundation/CoreFoundation.h>
#include <CoreMIDI/CoreMIDI.h>
#include <CoreServices/CoreServices.h>

#include "accessibility/VEK_C_AXUtils.h"
#include "accessibility/VersionProfiles.h"
#include "events/VEK_EventPoster.h"
#include "protocol/CACFMessagePort.h"
#include "windows/TargetWindowList.h"
#include "windows/VEK_Driver_TargetWindowInfo.h"

#ifdef __OBJC__
@class NSArray;
@class NSString;
#else
class NSArray;
class NSString;
#endif

class CVEK_UserSpaceDriver {
  public:
    // --- driver/: life cycle ---------------------------------------------------------------------

    CVEK_UserSpaceDriver();
    virtual ~CVEK_UserSpaceDriver();
    CVEK_UserSpaceDriver(const CVEK_UserSpaceDriver&) = delete;
    CVEK_UserSpaceDriver& operator=(const CVEK_UserSpaceDriver&) = delete;

    // --- windows/: the two other virtual operations, in slot order -----------------------------

    // True when `title` contains `name` (partial; an empty name never does) or equals it. Literal
    // and case-sensitive.
    virtual bool MatchWindowTitle(NSString* title, NSString* name, bool partial);

    // Always returns 0: signatures come from the front-application observer.
    virtual OSType GetSigFromPSN(ProcessSerialNumber* serialNumber);

    // --- driver/: life cycle, continued ----------------------------------------------------------

    // Installed for SIGINT: deletes the driver, if there is one, and ends the process with status
    // 0.
    static void SignalHandler(int signalNumber);

    // Runs the current run loop. `main` runs it through NSRunLoop instead.
    void Run();

    // Asks whether this process is trusted for accessibility, letting the system prompt the user.
    // The result is logged and not kept.
    void TriggerAXAlert();

    // --- driver/: periodic work ------------------------------------------------------------------

    // Ticks every 0.1 s, in the default run-loop mode only.
    void StartTimeoutCounter();
    void StopTimeoutCounter();
    static void TimeoutCounterEntry(CFRunLoopTimerRef timer, void* info);
    void TimeoutCounter();

    // --- protocol/: requests and outbound messages -----------------------------------------------

    // The message port's callback. Returns a reply that the message port releases, or null for no
    // reply, also while no driver exists.
    static CFDataRef MessageCallbackEntry(CFMessagePortRef port, SInt32 msgid, CFDataRef data,
                                          void* info);
    CFDataRef MessageCallback(CFMessagePortRef port, SInt32 msgid, CFDataRef data, void* info);

    // Sends to the companion; returns the status of CFMessagePortSendRequest, or -2 when there is
    // no remote port. With wantReply and a non-null reply, waits at most 0.01 s to send and 0.01 s
    // for the reply, which the caller releases.
    SInt32 SendMessage(int msgid, unsigned char* bytes, unsigned long long length, bool wantReply,
                       CFDataRef* reply);

    // --- controller/: MIDI connection and controller status --------------------------------------

    void MIDISignIn();
    void MIDISignOut();  // clears fields; disposes of nothing
    // False when a port or the controller is missing, or when connecting fails.
    bool DoConnect();
    bool LocateController();  // stores the controller's endpoints; false when it is not found
    MIDIDeviceRef LocateControllerDevice();                             // 0 when not found
    MIDIEntityRef LocateControllerPrivateEntity(MIDIDeviceRef device);  // 0 when not found
    MIDIEntityRef LocateControllerEchoEntity(MIDIDeviceRef device);     // 0 when not found

    // Exact equality of two 0-terminated names shorter than `max` bytes.
    static bool NameCmp(const char* wanted, const char* found, unsigned max);

    // The input port's read procedure; called on CoreMIDI's own thread. Hardware input is dropped.
    static void HardwareReadProcEntry(const MIDIPacketList* packets, void* readProcRefCon,
                                      void* srcConnRefCon);

    // Asks the companion; waits at most 0.01 s to send and 0.01 s for the reply.
    void RequestKRTStatus();

    // `reply`: seven 32-bit words, most significant byte first, 28 bytes.
    void SetKRTStatus(const unsigned char* reply);

    bool RequestConnectState();

    // 0 until a status reply has been applied.
    static unsigned short GetUnitCount();
    static unsigned short GetChannelCount();

    static void HexByteToCString(unsigned char byte, char* out);  // out: 3 bytes
    // out: 3 x length bytes, at least 1.
    static void HexDataToCString(const unsigned char* data, unsigned length, char* out);
    static void PrtHex(const unsigned char* data, unsigned length, bool newline);

    // --- accessibility/: element search in a given array -----------------------------------------

    // Searches the children, and the groups, split groups and scroll areas among them, to any
    // depth. The element that is found is autoreleased. False, with `element` untouched, when there
    // is none. passThrough has no effect.
    bool CopyChildWithID(CFArrayRef children, CFStringRef identifier, AXUIElementRef& element,
                         CFStringRef role, bool passThrough, bool debug);
    // Looks at the children alone. The caller releases; null when there is none.
    AXUIElementRef CopyChildWithRoleAndDescription(CFArrayRef children, CFStringRef role,
                                                   CFStringRef description, bool debug);
    void UncachePathToElementID(CFStringRef identifier);  // does nothing

    // --- accessibility/: element operations by identifier ----------------------------------------

    // Each works on the first such element of the front application. False, with the output
    // untouched, when there is none, when the application fails, or when the element does not have
    // what is asked for. Points are global display coordinates.

    // Autoreleased: the caller does not release it. Null instead of false.
    CFStringRef GetStringValueOfElementWithID(CFStringRef identifier);
    // Always false, also after success.
    bool SetIntValueAsStringOfElementWithID(CFStringRef identifier, int value);
    // 0 for a value that is not a number or cannot be read.
    bool GetValueOfElementWithID(CFStringRef identifier, unsigned& value);
    // A point in the control: except for one, a little right of and below its top left corner.
    bool GetPositionOfElementWithID(CFStringRef identifier, CGPoint& point);
    bool PressButtonWithID(CFStringRef identifier);
    // The index of the selected button, and the selection of the button at an index.
    bool GetValueOfAXRadioGroupWithID(CFStringRef identifier, unsigned& value);
    bool SetValueOfAXRadioGroupWithID(CFStringRef identifier, unsigned index);
    // The top left corner of the element's parent.
    bool GetParentPositionOfElementWithID(CFStringRef identifier, CGPoint& point);

    // --- accessibility/: version profiles --------------------------------------------------------

    // Row for the editing application's short version; 5 for a version that is not in the table.
    static int ProfileForVersion(CFStringRef shortVersion);

    static constexpr int kProfileCount = kEditorProfileCount;
    static constexpr int kProfileColumns = 6;
    static constexpr int kProfileForOtherVersions = kProfileCount - 1;
    static const CFStringRef sFCPXAXIDsForVersions[kProfileCount][kProfileColumns];

    // --- accessibility/: observation of the editing application ----------------------------------

    void ObserveFCPXClipSelectionChange();
    void ObserveFCPXTimelineTimecode();
    void ObserveFCPXClipSelectionTask();
    void ObserveFCPXTimelineTimecodeTask();
    bool IsTimelineIndexVisible();
    void SetClipNameFromStaticTextElement(AXUIElementRef element);
    void SetClipNameFromClipTableElement(AXUIElementRef table);

    // These do nothing: see accessibility/ObserverStubs.cpp.
    void ObserveFCPXElement(NSString* identifier, unsigned value, NSString* text);
    static void ObserverCallbackEntry(AXObserverRef observer, AXUIElementRef element,
                                      CFStringRef notification, void* info);
    void ObserverDestroyedCallback(AXObserverRef observer, AXUIElementRef element);
    void ObserverRowSelectCallback(AXObserverRef observer, AXUIElementRef element);

    // --- accessibility/: color puck --------------------------------------------------------------

    // Borrowed from an autoreleased array; null when there is none.
    AXUIElementRef GetColorPuckWithID(NSString* identifier);

    // --- events/: pointer ------------------------------------------------------------------------

    // Global display coordinates, origin at the top left of the main screen.
    void GetGlobalMouse(CGPoint* where);

    // --- windows/: window lookup ---------------------------------------------------------------

    NSArray* CopyApplicationWindowList(bool debug, NSString* label);  // autoreleased, or nil
    AXUIElementRef GetWindowElementWithTitle(NSString* title, bool partial);     // borrowed
    AXUIElementRef GetWindowElementWithTitle(std::string& title, bool partial);  // UTF-8; borrowed

    // Frames are points in global display coordinates. False, with `position` and `size` untouched,
    // when there is no such window or its frame cannot be read.
    bool GetPosAndSizeForWindowElement(AXUIElementRef window, CGPoint& position, CGSize& size);
    // Makes the window the main one first; false, too, when that fails.
    bool GetPosAndSizeForWindowName(std::string& name, bool partial, CGPoint& position,
                                    CGSize& size);
    // `index` is that of the candidate that was found.
    bool GetTargetIndexForWindow(NSString* windowTitle, VEK_Driver_TargetWindowInfo* targets,
                                 unsigned count, unsigned* index);
    bool GetPosAndSizeForTargetWindow(VEK_Driver_TargetWindowInfo* targets, unsigned count,
                                      unsigned& index, CGPoint& position, CGSize& size);
    bool GetPosAndSizeForTargetWindow(const TargetWindowList& targets, unsigned& index,
                                      CGPoint& position, CGSize& size);

    // --- VEKCommon/: language --------------------------------------------------------------------

    // Reads the language tag and reports it to the companion; false when it cannot be read.
    bool GetLocale();
    // Copies the tag as strncpy does: not terminated when it fills `length` bytes.
    static void GetCurrentLanguage(char* out, unsigned length);

    // The one driver object; set by the constructor, never cleared.
    static CVEK_UserSpaceDriver* sSelf;
    static char sDebugStr[1024];  // nothing reads or writes it

  private:
    friend struct DriverInspector;    // the tests' view of the fields
    friend struct RequestOperations;  // protocol/: what each request does

    void RefreshFrontApplication();  // protocol/: a part of 'JAcF'

    // accessibility/: steps of ObserveFCPXClipSelectionTask. False when there is no such text.
    bool FollowStaticText(int profileColumn);
    void FollowClipTable();
    // Sends the name, which fits lastClipName, if it differs from that.
    void ReportClipName(const char* name);

    unsigned short unitCount;
    unsigned short channelCount;
    unsigned short statusReserved;  // the third status word, which is not kept: always 0
    bool statusValid;
    [[maybe_unused]] bool spareFlag;
    bool connectState;  // returned by RequestConnectState; nothing sets it: always false
    CFRunLoopTimerRef timeoutTimer = nullptr;
    MIDIClientRef midiClient;
    MIDIObjectRef spareMIDIReferences[2] = {0, 0};
    MIDIPortRef inputPort = 0;
    MIDIPortRef outputPort = 0;
    MIDIEndpointRef sourceEndpoint = 0;
    MIDIEndpointRef destinationEndpoint = 0;  // nothing is sent to it
    bool connected = false;
    bool localeSent;
    char language[32] = {};
    CACFLocalMessagePort localPort;
    CACFRemoteMessagePort* remotePort;
    CFRunLoopSourceRef runLoopSource;  // localPort's
    VEK_C_AXUtils axUtils;
    bool observeClipSelection;
    bool observeTimelineTimecode;
    bool timelineIndexVisible;
    bool timelineIndexChanged;
    pid_t frontAppPID = 0;  // stored by 'JAcF'; nothing reads it
    [[maybe_unused]] void* sparePointer;
    long long lastClipRow = -1;  // -1: none
    CFMutableStringRef lastTimecode;
    char lastClipName[1024] = {};
    char versionString[32];
    int fcpxProfile;
    VEK_EventPoster eventPoster;
    CFIndex loggedStatusLength = 0;  // bytes of the last status reply that was logged as too short
};
