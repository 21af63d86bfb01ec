// Follows the name of the clip that is selected in the editing application.
#include <cstring>

#include "VEKCommon/MessageCodes.h"
#include "VEKCommon/OwnedReference.h"
#include "accessibility/EditingApplication.h"
#include "accessibility/VersionProfiles.h"
#include "accessibility/calls/ElementAttributes.h"
#include "driver/CVEK_UserSpaceDriver.h"

namespace {

constexpr long long kNoRow = -1;

enum ClipNameSource : unsigned int {
    kFromFirstStaticText = 0,
    kFromSecondStaticText = 1,
    kFromClipTable = 2,
};

// The first cell of a row holds the name; in 10.3 the cell's text field does.
OwnedReference<CFStringRef> CopyClipNameOfRow(VEK_C_AXUtils& axUtils, AXUIElementRef row,
                                              int profile) {
    OwnedReference<CFArrayRef> cells = CopyArrayAttribute(row, kAXChildrenAttribute);
    AXUIElementRef cell = ElementAt(cells.get(), 0);
    if (profile != kProfile10_3) {
        return CopyStringAttribute(cell, kAXValueAttribute);
    }
    OwnedReference<CFArrayRef> parts = CopyArrayAttribute(cell, kAXChildrenAttribute);
    return CopyStringAttribute(axUtils.CopySibling(parts.get(), kAXTextFieldRole),
                               kAXValueAttribute);
}

}  // namespace

void CVEK_UserSpaceDriver::ObserveFCPXClipSelectionChange() {
    lastClipName[0] = 0;
    observeClipSelection = FrontApplicationPassesAsEditor();
    lastClipRow = kNoRow;
}

// A source that works is kept; after one that fails, the next tick tries the next one. The clip
// table is tried for a single tick.
void CVEK_UserSpaceDriver::ObserveFCPXClipSelectionTask() {
    static unsigned int clipNameSource = kFromFirstStaticText;
    // Unreachable: any other value, since only the cases below set it.
    switch (clipNameSource) {
        case kFromFirstStaticText:
            if (!FollowStaticText(kFirstClipName)) {
                clipNameSource = kFromSecondStaticText;
            }
            break;
        case kFromSecondStaticText:
            if (!FollowStaticText(kSecondClipName)) {
                clipNameSource = kFromClipTable;
            }
            break;
        case kFromClipTable:
            FollowClipTable();
            clipNameSource = kFromFirstStaticText;
            break;
    }
}

bool CVEK_UserSpaceDriver::FollowStaticText(int profileColumn) {
    OwnedReference<AXUIElementRef> element(axUtils.CopyElement(
        FCPXIdentifier(fcpxProfile, profileColumn), kAXStaticTextRole, false, ""));
    if (!element) {
        return false;
    }
    SetClipNameFromStaticTextElement(element.get());
    return true;
}

void CVEK_UserSpaceDriver::FollowClipTable() {
    bool visible = IsTimelineIndexVisible();
    if (visible != timelineIndexVisible) {
        timelineIndexVisible = visible;
        timelineIndexChanged = true;
    }
    if (!timelineIndexVisible) {
        return;
    }
    if (timelineIndexChanged) {
        lastClipRow = kNoRow;
    }
    OwnedReference<AXUIElementRef> table(
        axUtils.CopyElement(FCPXIdentifier(fcpxProfile, kClipTable), kAXTableRole, false, ""));
    if (table) {
        SetClipNameFromClipTableElement(table.get());
    }
}

bool CVEK_UserSpaceDriver::IsTimelineIndexVisible() {
    axUtils.SetDebugLevel(0);
    CFStringRef identifier = FCPXIdentifier(fcpxProfile, kTimelineIndexToggle);
    OwnedReference<AXUIElementRef> toggle(
        fcpxProfile < kProfile10_3 ? axUtils.CopyChild(0, kVEK_FCPX_ToggleTimelineIndexButtonID,
                                                       identifier, kAXRadioGroupRole)
                                   : axUtils.CopyElement(identifier, kAXCheckBoxRole, false, ""));
    return toggle &&
           axUtils.IntegerValueForElement(toggle.get(), kVEK_FCPX_ToggleTimelineIndexButtonID) != 0;
}

// A text that is empty or cannot be read counts as no selection.
void CVEK_UserSpaceDriver::SetClipNameFromStaticTextElement(AXUIElementRef element) {
    char name[sizeof lastClipName] = "no clip selected";
    OwnedReference<CFStringRef> value(axUtils.CopyStringValueForElement(element));
    if (value && CFStringGetLength(value.get()) > 0 &&
        !GetSystemEncodedText(value.get(), name, sizeof name)) {
        return;
    }
    ReportClipName(name);
}

void CVEK_UserSpaceDriver::SetClipNameFromClipTableElement(AXUIElementRef table) {
    OwnedReference<CFArrayRef> rows = CopyArrayAttribute(table, kAXSelectedRowsAttribute);
    AXUIElementRef row = ElementAt(rows.get(), 0);
    OwnedReference<CFNumberRef> rowIndex = CopyNumberAttribute(row, kAXIndexAttribute);
    if (!rowIndex || SInt32Value(rowIndex.get()) == lastClipRow) {
        return;
    }
    // Stored before the name is read: a row whose name cannot be read is not tried again.
    lastClipRow = SInt32Value(rowIndex.get());
    char name[sizeof lastClipName];
    OwnedReference<CFStringRef> value = CopyClipNameOfRow(axUtils, row, fcpxProfile);
    if (value && GetSystemEncodedText(value.get(), name, sizeof name)) {
        ReportClipName(name);
    }
}

void CVEK_UserSpaceDriver::ReportClipName(const char* name) {
    std::size_t size = std::strlen(name) + 1;
    if (std::strcmp(name, lastClipName) != 0) {
        SendMessage(kJFSC, reinterpret_cast<unsigned char*>(const_cast<char*>(name)), size, false,
                    nullptr);
        std::memcpy(lastClipName, name, size);
    }
}
