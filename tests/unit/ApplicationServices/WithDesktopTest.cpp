// The frameworks together with the simulated desktop: what a process finds in a session.
#include <ApplicationServices/ApplicationServices.h>
#include <CoreMIDI/CoreMIDI.h>
#include <gtest/gtest.h>

#include "platform/ApplicationServices/Element.h"
#include "platform/Testing/LiveObjects.h"
#include "tests/support/OwnedObject.h"
#include "tests/support/ScriptedDesktop.h"

namespace {

using OwnedElement = test_support::OwnedObject<AXUIElementRef>;
using OwnedArray = test_support::OwnedObject<CFArrayRef>;
using OwnedEvent = test_support::OwnedObject<CGEventRef>;
using OwnedString = test_support::OwnedObject<CFStringRef>;
using Owned = test_support::OwnedObject<CFTypeRef>;

constexpr char kScene[] = R"({
  "trusted": true,
  "screens": [{"frame": [0, 0, 1440, 900]}],
  "pointer": [100, 200],
  "front": "com.example.editor",
  "applications": [
    {"bundleID": "com.example.editor", "name": "Editor", "pid": 501, "windows": [
      {"AXRole": "AXWindow", "AXTitle": "Main", "AXPosition": [0, 22], "AXSize": [1440, 878],
       "AXChildren": [
         {"AXRole": "AXCheckBox", "AXIdentifier": "_NS:159", "AXValue": 1},
         {"AXRole": "AXTextField", "AXIdentifier": "_NS:20", "AXValue": "five"},
         {"AXRole": "AXButton", "AXIdentifier": "_NS:21", "AXTitle": {"error": -25204}}]}]}],
  "midi": {"devices": [{"name": "KRT-9 USB", "entities": [
     {"name": "Private", "sources": ["Private"], "destinations": ["Private"]}]}]}
})";

class WithDesktop : public testing::Test {
  protected:
    static AXError Copy(AXUIElementRef element, CFStringRef attribute, Owned& value) {
        return AXUIElementCopyAttributeValue(element, attribute, value.Out());
    }

    // The window's child at that index; its window when the index is -1.
    OwnedElement Control(CFIndex index) {
        const OwnedElement application = AXUIElementCreateApplication(501);
        Owned windows;
        Owned children;
        EXPECT_EQ(Copy(application, kAXWindowsAttribute, windows), kAXErrorSuccess);
        const auto window = static_cast<AXUIElementRef>(
            CFArrayGetValueAtIndex(static_cast<CFArrayRef>(windows.get()), 0));
        if (index < 0) {
            return static_cast<AXUIElementRef>(CFRetain(window));
        }
        EXPECT_EQ(Copy(window, kAXChildrenAttribute, children), kAXErrorSuccess);
        return static_cast<AXUIElementRef>(
            CFRetain(CFArrayGetValueAtIndex(static_cast<CFArrayRef>(children.get()), index)));
    }

    static SInt32 Number(CFTypeRef object) {
        SInt32 number = -1;
        EXPECT_EQ(CFGetTypeID(object), CFNumberGetTypeID());
        CFNumberGetValue(static_cast<CFNumberRef>(object), kCFNumberSInt32Type, &number);
        return number;
    }

    test_support::ScriptedDesktop desktop_{kScene};
};

TEST_F(WithDesktop, TreeIsReadDownFromTheApplicationAndUpAgain) {
    const OwnedElement box = Control(0);
    Owned role;
    Owned value;
    Owned parent;
    EXPECT_EQ(Copy(box, kAXRoleAttribute, role), kAXErrorSuccess);
    EXPECT_TRUE(CFEqual(role.get(), kAXCheckBoxRole));
    EXPECT_EQ(Copy(box, kAXValueAttribute, value), kAXErrorSuccess);
    EXPECT_EQ(Number(value), 1);
    EXPECT_EQ(Copy(box, kAXParentAttribute, parent), kAXErrorSuccess);
    EXPECT_TRUE(CFEqual(parent.get(), Control(-1).get()));
    EXPECT_EQ(application_services::ReferenceOf(box).pid, 501);
}

TEST_F(WithDesktop, FrameOfAWindowIsAPointAndASize) {
    const OwnedElement window = Control(-1);
    Owned position;
    Owned size;
    CGPoint point{};
    CGSize extent{};
    EXPECT_EQ(Copy(window, kAXPositionAttribute, position), kAXErrorSuccess);
    EXPECT_EQ(Copy(window, kAXSizeAttribute, size), kAXErrorSuccess);
    EXPECT_TRUE(AXValueGetValue(static_cast<AXValueRef>(position.get()),
                                static_cast<AXValueType>(kAXValueCGPointType), &point));
    EXPECT_TRUE(AXValueGetValue(static_cast<AXValueRef>(size.get()), kAXValueTypeCGSize, &extent));
    EXPECT_EQ(point.y, 22);
    EXPECT_EQ(extent.width, 1440);
}

TEST_F(WithDesktop, FourAttributesOfAControlAreOneExchange) {
    const OwnedElement button = Control(2);
    const void* names[] = {kAXRoleAttribute, kAXChildrenAttribute, kAXIdentifierAttribute,
                           kAXTitleAttribute};
    const OwnedArray attributes =
        CFArrayCreate(kCFAllocatorDefault, names, 4, &kCFTypeArrayCallBacks);
    OwnedArray values;
    const unsigned long before = desktop_link::ExchangeCount();
    EXPECT_EQ(AXUIElementCopyMultipleAttributeValues(button, attributes, 0, values.Out()),
              kAXErrorSuccess);
    EXPECT_EQ(desktop_link::ExchangeCount() - before, 1u);
    ASSERT_EQ(CFArrayGetCount(values), 4);
    EXPECT_TRUE(CFEqual(CFArrayGetValueAtIndex(values, 0), kAXButtonRole));
    EXPECT_TRUE(CFEqual(CFArrayGetValueAtIndex(values, 2), CFSTR("_NS:21")));
    AXError error = kAXErrorSuccess;
    EXPECT_TRUE(AXValueGetValue(static_cast<AXValueRef>(CFArrayGetValueAtIndex(values, 3)),
                                kAXValueTypeAXError, &error));
    EXPECT_EQ(error, kAXErrorCannotComplete);
}

TEST_F(WithDesktop, PressFlipsACheckBoxAndSetKeepsAText) {
    const OwnedElement box = Control(0);
    const OwnedElement field = Control(1);
    Owned value;
    EXPECT_EQ(AXUIElementPerformAction(box, kAXPressAction), kAXErrorSuccess);
    EXPECT_EQ(Copy(box, kAXValueAttribute, value), kAXErrorSuccess);
    EXPECT_EQ(Number(value), 0);
    EXPECT_EQ(AXUIElementSetAttributeValue(field, kAXValueAttribute, CFSTR("six")),
              kAXErrorSuccess);
    EXPECT_EQ(AXUIElementPerformAction(field, kAXConfirmAction), kAXErrorSuccess);
    EXPECT_EQ(Copy(field, kAXValueAttribute, value), kAXErrorSuccess);
    EXPECT_TRUE(CFEqual(value.get(), CFSTR("six")));
}

TEST_F(WithDesktop, ProcessThatIsNotThereHasInvalidElements) {
    const OwnedElement nobody = AXUIElementCreateApplication(9999);
    Owned value;
    EXPECT_EQ(Copy(nobody, kAXWindowsAttribute, value), kAXErrorInvalidUIElement);
    EXPECT_EQ(AXUIElementPerformAction(nobody, kAXPressAction), kAXErrorInvalidUIElement);
}

TEST_F(WithDesktop, HungApplicationCannotCompleteAndADeadOnesElementsAreInvalid) {
    const OwnedElement box = Control(0);
    Owned value;
    desktop_.Run(R"({"command": "hang", "application": "com.example.editor"})");
    EXPECT_EQ(Copy(box, kAXValueAttribute, value), kAXErrorCannotComplete);
    EXPECT_EQ(AXUIElementPerformAction(box, kAXPressAction), kAXErrorCannotComplete);
    desktop_.Run(R"({"command": "kill", "application": "com.example.editor"})");
    EXPECT_EQ(Copy(box, kAXValueAttribute, value), kAXErrorInvalidUIElement);
}

TEST_F(WithDesktop, UntrustedProcessIsToldThatTheInterfaceIsDisabled) {
    const OwnedElement box = Control(0);
    EXPECT_TRUE(AXIsProcessTrustedWithOptions(nullptr));
    EXPECT_EQ(desktop_.Run(R"({"command": "trust", "trusted": false})"), R"({"ok":true})");
    Owned value;
    EXPECT_FALSE(AXIsProcessTrustedWithOptions(nullptr));
    EXPECT_EQ(Copy(box, kAXValueAttribute, value), kAXErrorAPIDisabled);
    const OwnedEvent event = CGEventCreateKeyboardEvent(nullptr, 1, true);
    CGEventPost(kCGHIDEventTap, event);
    EXPECT_TRUE(desktop_->Events().empty()) << "events of an untrusted process are dropped";
}

TEST_F(WithDesktop, EventsReachTheTapInOrderAndMoveThePointer) {
    const OwnedEvent key = CGEventCreateKeyboardEvent(nullptr, 55, true);
    const OwnedEvent move =
        CGEventCreateMouseEvent(nullptr, kCGEventMouseMoved, {300, 400}, kCGMouseButtonLeft);
    CGEventSetFlags(key, kCGEventFlagMaskCommand);
    CGEventPost(kCGHIDEventTap, key);
    CGEventPost(kCGHIDEventTap, move);
    ASSERT_EQ(desktop_->Events().size(), 2u);
    EXPECT_EQ(desktop_->Events()[0].keyCode, 55);
    EXPECT_EQ(desktop_->Events()[1].position, (desktop_link::Point{300, 400}));
    const OwnedEvent here = CGEventCreate(nullptr);
    EXPECT_EQ(CGEventGetLocation(here).x, 300);
    EXPECT_EQ(CGEventGetLocation(here).y, 400);
}

TEST_F(WithDesktop, MidiSourceIsFoundByNameAndConnected) {
    MIDIClientRef client = 0;
    MIDIPortRef port = 0;
    MIDIClientCreate(CFSTR("KRT9"), nullptr, nullptr, &client);
    MIDIInputPortCreate(
        client, CFSTR("Input"), [](const MIDIPacketList*, void*, void*) {}, nullptr, &port);
    ASSERT_EQ(MIDIGetNumberOfDevices(), 1u);
    const MIDIDeviceRef device = MIDIGetDevice(0);
    OwnedString name;
    EXPECT_EQ(MIDIObjectGetStringProperty(device, kMIDIPropertyName, name.Out()), 0);
    EXPECT_TRUE(CFEqual(name.get(), CFSTR("KRT-9 USB")));
    const MIDIEndpointRef source = MIDIEntityGetSource(MIDIDeviceGetEntity(device, 0), 0);
    EXPECT_NE(source, 0u);
    EXPECT_EQ(MIDIPortConnectSource(port, source, nullptr), 0);
    EXPECT_EQ(MIDIPortConnectSource(port, source + 100, nullptr), kMIDIUnknownEndpoint);
    MIDIClientDispose(client);
}

TEST_F(WithDesktop, WalkDownATreeLeavesNoObjectBehind) {
    EXPECT_EQ(platform_testing::LeftOverBy([this] {
                  const OwnedElement field = Control(1);
                  Owned value;
                  Copy(field, kAXValueAttribute, value);
                  AXUIElementSetAttributeValue(field, kAXValueAttribute, value.get());
              }),
              "");
}

}  // namespace
