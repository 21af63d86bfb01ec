// The releases of the editing application that the driver knows, as tests go through them.
#pragma once

#include <ostream>

#include "accessibility/VersionProfiles.h"

namespace test_support {

struct EditorRelease {
    FCPXProfile row;
    const char* scene;  // the version of its scene and its golden stream
    const char* timelineIndexToggle;
    const char* clipTable;
    const char* unread;
    const char* timecodeArea;
    const char* firstClipName;
    const char* secondClipName;
};

inline constexpr EditorRelease kEditorReleases[] = {
#define EDITOR_RELEASE(row, prefix, scene, ...) {row, scene, __VA_ARGS__},
#define EDITOR_RELEASE_ALIKE(row, prefix)
#include "accessibility/EditorReleases.def"
#undef EDITOR_RELEASE
#undef EDITOR_RELEASE_ALIKE
};

// What GoogleTest calls one.
inline void PrintTo(const EditorRelease& release, std::ostream* out) {
    *out << release.scene;
}

}  // namespace test_support
