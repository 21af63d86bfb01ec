#include "protocol/RequestOperations.h"

#include <cstring>

#include "VEKCommon/ConsoleLog.h"
#include "VEKCommon/Names.h"
#include "frontapplication/FrontApplication.h"

namespace {

// Coordinates are unsigned numbers: one that was sent as a negative number's bit pattern
// deliberately becomes a large positive coordinate.
CGPoint GesturePoint(const SSendMouseSpec& request) {
    return CGPointMake(request.x, request.y);
}

unsigned short Low16(unsigned int field) {
    return static_cast<unsigned short>(field & 0xFFFF);
}

}  // namespace

ElementIdentifier::ElementIdentifier(unsigned int number)
    : text_(CFStringCreateWithFormat(kCFAllocatorDefault, nullptr, CFSTR("_NS:%ld"),
                                     static_cast<long>(number))) {}

void ElementIdentifier::Deserialize(const unsigned char* src) {
    unsigned int number = 0;
    static_assert(sizeof number == kSmallestSize);
    std::memcpy(&number, src, sizeof number);
    *this = ElementIdentifier(number);
}

// --- Front application and observation -----------------------------------------------------------

void CVEK_UserSpaceDriver::RefreshFrontApplication() {
    axUtils.ResetCacheForApplication(CFSTR(kEditorBundleID));
    frontAppPID = CFWorkspace_CurrentFrontApplicationPID();
    CFStringRef shortVersion = nullptr;
    if (CFWorkspace_FrontApplicationShortVersion(&shortVersion)) {
        fcpxProfile = ProfileForVersion(shortVersion);
    }
}

void RequestOperations::RefreshAndObserve(Driver& driver, const SThreeIntSpec& request) {
    if (request.a != 0) {
        driver.RefreshFrontApplication();
    }
    if (request.b != 0) {
        driver.ObserveFCPXTimelineTimecode();
    }
    if (request.c != 0) {
        driver.ObserveFCPXClipSelectionChange();
    }
}

void RequestOperations::ObserveClipSelection(Driver& driver, const NoBody&) {
    driver.ObserveFCPXClipSelectionChange();
}

void RequestOperations::ObserveTimelineTimecode(Driver& driver, const NoBody&) {
    driver.ObserveFCPXTimelineTimecode();
}

// Once the clip name is forgotten, the next one is sent even if it is the same.
void RequestOperations::StopObserving(Driver& driver, const NoBody&) {
    driver.lastClipName[0] = 0;
    driver.observeTimelineTimecode = false;
    driver.observeClipSelection = false;
    driver.axUtils.ResetCacheForApplication(CFSTR(kEditorBundleID));
}

// Observation goes on.
void RequestOperations::ForgetElementsAndClipName(Driver& driver, const NoBody&) {
    driver.axUtils.ResetCacheForApplication(CFSTR(kEditorBundleID));
    driver.lastClipName[0] = 0;
}

// Accepted, so that it is not logged as unknown, and deliberately without effect.
void RequestOperations::DoNothing(Driver&, const NoBody&) {}

// --- Elements ------------------------------------------------------------------------------------

void RequestOperations::PressButton(Driver& driver, const ElementIdentifier& element) {
    driver.PressButtonWithID(element.Text());
}

void RequestOperations::SetNumberAsText(Driver& driver, const STwoIntSpec& request) {
    const ElementIdentifier element(request.identifier);
    driver.SetIntValueAsStringOfElementWithID(element.Text(), static_cast<int>(request.value));
}

void RequestOperations::SelectRadioButton(Driver& driver, const STwoIntSpec& request) {
    const ElementIdentifier element(request.identifier);
    if (driver.SetValueOfAXRadioGroupWithID(element.Text(), request.value)) {
        ConsoleLog(CFSTR("  SetValueOfAXRadioGroupWithID (%@, %d) succeeded!"), element.Text(),
                   request.value);
    } else {
        ConsoleLog(CFSTR("  SetValueOfAXRadioGroupWithID (%@, %d) failed!"), element.Text(),
                   request.value);
    }
}

std::optional<SOneIntSpec> RequestOperations::Value(Driver& driver,
                                                    const ElementIdentifier& element) {
    unsigned int value = 0;
    if (!driver.GetValueOfElementWithID(element.Text(), value)) {
        return std::nullopt;
    }
    return SOneIntSpec(value);
}

std::optional<SOneIntSpec> RequestOperations::TextAsNumber(Driver& driver,
                                                           const ElementIdentifier& element) {
    const CFStringRef text = driver.GetStringValueOfElementWithID(element.Text());  // autoreleased
    if (text == nullptr) {
        return std::nullopt;
    }
    return SOneIntSpec(static_cast<unsigned int>(CFStringGetIntValue(text)));
}

std::optional<SOneIntSpec> RequestOperations::SelectedRadioButton(
    Driver& driver, const ElementIdentifier& element) {
    unsigned int index = 0;
    if (!driver.GetValueOfAXRadioGroupWithID(element.Text(), index)) {
        ConsoleLog(CFSTR("  GetValueOfAXRadioGroupWithID (%@) failed!"), element.Text());
        return std::nullopt;
    }
    return SOneIntSpec(index);
}

std::optional<SPointSpec> RequestOperations::Position(Driver& driver,
                                                      const ElementIdentifier& element) {
    CGPoint point = CGPointMake(0, 0);
    if (!driver.GetPositionOfElementWithID(element.Text(), point)) {
        return std::nullopt;
    }
    return SPointSpec(point);
}

std::optional<SPointSpec> RequestOperations::ParentPosition(Driver& driver,
                                                            const ElementIdentifier& element) {
    CGPoint point = CGPointMake(0, 0);
    if (!driver.GetParentPositionOfElementWithID(element.Text(), point)) {
        return std::nullopt;
    }
    return SPointSpec(point);
}

// --- Input events --------------------------------------------------------------------------------

// A key value of 0 is never posted, although it is the code of a key. All 32 bits decide: a value
// whose low 16 bits alone are 0 posts key 0.
void RequestOperations::PostKeystroke(Driver& driver, const SSendKeystrokeSpec& request) {
    if (request.keyCode != 0) {
        driver.eventPoster.PostKeystroke(Low16(request.keyCode), Low16(request.modifiers),
                                         request.flag != 0);
    }
}

void RequestOperations::StartMouseGesture(Driver& driver, const SSendMouseSpec& request) {
    driver.eventPoster.PostMouseStartEvent(GesturePoint(request), Low16(request.button),
                                           request.flag != 0);
}

void RequestOperations::ContinueMouseGesture(Driver& driver, const SSendMouseSpec& request) {
    driver.eventPoster.PostMouseContinueEvent(GesturePoint(request), Low16(request.button),
                                              request.flag != 0);
}

void RequestOperations::EndMouseGesture(Driver& driver, const SSendMouseSpec& request) {
    driver.eventPoster.PostMouseEndEvent(GesturePoint(request), Low16(request.button),
                                         request.flag != 0);
}

std::optional<SPointSpec> RequestOperations::PointerPosition(Driver& driver, const NoBody&) {
    CGPoint where = CGPointMake(0, 0);
    driver.GetGlobalMouse(&where);
    return SPointSpec(where);
}

// --- Windows -------------------------------------------------------------------------------------

std::optional<SPointSizeSpec> RequestOperations::WindowFrame(Driver& driver,
                                                             SWindowRequestSpec& request) {
    CGPoint position = CGPointMake(0, 0);
    CGSize size = CGSizeMake(0, 0);
    if (!driver.GetPosAndSizeForWindowName(request.name, request.flag, position, size)) {
        return std::nullopt;
    }
    return SPointSizeSpec(position, size);
}

std::optional<STargetPointSizeSpec> RequestOperations::TargetWindowFrame(
    Driver& driver, STargetWindowRequestSpec& request) {
    unsigned int index = 0;
    CGPoint position = CGPointMake(0, 0);
    CGSize size = CGSizeMake(0, 0);
    if (!driver.GetPosAndSizeForTargetWindow(request.targets, index, position, size)) {
        return std::nullopt;
    }
    return STargetPointSizeSpec(index, position, size);
}
