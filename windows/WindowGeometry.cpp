#include "accessibility/calls/AccessibilityCalls.h"
#include "driver/CVEK_UserSpaceDriver.h"
#include "windows/WindowAttributes.h"

// Both outputs are written, or neither.
bool CVEK_UserSpaceDriver::GetPosAndSizeForWindowElement(AXUIElementRef window, CGPoint& position,
                                                         CGSize& size) {
    CGPoint readPosition;
    CGSize readSize;
    if (!CopyWindowGeometry(window, kAXPositionAttribute, kAXValueTypeCGPoint, &readPosition) ||
        !CopyWindowGeometry(window, kAXSizeAttribute, kAXValueTypeCGSize, &readSize)) {
        return false;
    }
    position = readPosition;
    size = readSize;
    return true;
}

// False, too, when the window cannot be made the main one.
bool CVEK_UserSpaceDriver::GetPosAndSizeForWindowName(std::string& name, bool partial,
                                                      CGPoint& position, CGSize& size) {
    AXUIElementRef window = GetWindowElementWithTitle(name, partial);
    if (window == nullptr) {
        return false;
    }
    if (!SetAttribute(window, kAXMainAttribute, kCFBooleanTrue)) {
        return false;
    }
    return GetPosAndSizeForWindowElement(window, position, size);
}
