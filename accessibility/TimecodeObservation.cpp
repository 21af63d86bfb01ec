// Follows the timecode under the playhead of the editing application's timeline.
#include <cstring>

#include "VEKCommon/MessageCodes.h"
#include "VEKCommon/OwnedReference.h"
#include "accessibility/EditingApplication.h"
#include "accessibility/VersionProfiles.h"
#include "accessibility/calls/ElementAttributes.h"
#include "driver/CVEK_UserSpaceDriver.h"

namespace {

constexpr std::size_t kTimecodeSize = 64;  // bytes, with the terminator

OwnedReference<AXUIElementRef> FindPlayhead(VEK_C_AXUtils& axUtils, int profile) {
    OwnedReference<AXUIElementRef> area(
        axUtils.CopyElement(FCPXIdentifier(profile, kTimecodeArea), kAXLayoutAreaRole, false, ""));
    OwnedReference<CFArrayRef> children = CopyArrayAttribute(area.get(), kAXChildrenAttribute);
    return OwnedReference<AXUIElementRef>(
        axUtils.CopySibling(children.get(), kAXValueIndicatorRole, CFSTR("Playhead")));
}

}  // namespace

void CVEK_UserSpaceDriver::ObserveFCPXTimelineTimecode() {
    CFStringReplaceAll(lastTimecode, CFSTR(""));
    observeTimelineTimecode = FrontApplicationPassesAsEditor();
}

void CVEK_UserSpaceDriver::ObserveFCPXTimelineTimecodeTask() {
    if (!observeTimelineTimecode) {
        return;
    }
    OwnedReference<AXUIElementRef> playhead = FindPlayhead(axUtils, fcpxProfile);
    if (!playhead) {
        return;
    }
    OwnedReference<CFStringRef> text(axUtils.CopyValueDescriptionForElement(playhead.get()));
    if (!text || CFStringCompare(text.get(), lastTimecode, 0) == kCFCompareEqualTo) {
        return;
    }
    // Stored before the conversion: a timecode that cannot be converted is not tried again.
    CFStringReplaceAll(lastTimecode, text.get());
    char timecode[kTimecodeSize];
    if (GetSystemEncodedText(text.get(), timecode, sizeof timecode)) {
        SendMessage(kJFTC, reinterpret_cast<unsigned char*>(timecode), std::strlen(timecode) + 1,
                    false, nullptr);
    }
}
