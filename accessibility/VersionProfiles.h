// What differs between the releases of the editing application.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

// Passed along with lookups of the timeline-index toggle; has no effect.
#define kVEK_FCPX_ToggleTimelineIndexButtonID CFSTR("_TTIB")

// Rows of the profile table, named by the first release of each.
enum FCPXProfile {
#define EDITOR_RELEASE(row, prefix, scene, ...) row,
#define EDITOR_RELEASE_ALIKE(row, prefix)
#include "accessibility/EditorReleases.def"
#undef EDITOR_RELEASE
#undef EDITOR_RELEASE_ALIKE
    kEditorProfileCount
};

// Columns of the profile table. Column 2 is filled in but never read.
enum FCPXControl {
    kTimelineIndexToggle = 0,  // AXRadioGroup before 10.3, AXCheckBox since
    kClipTable = 1,            // AXTable, present while the timeline index is visible
    kTimecodeArea = 3,         // AXLayoutArea with the playhead
    kFirstClipName = 4,        // AXStaticText
    kSecondClipName = 5,       // AXStaticText
};

// The identifier in that row and column (FCPXControl) of the table; a row that the table does not
// have counts as the last. Borrowed; never released.
CFStringRef FCPXIdentifier(int profile, int column);
