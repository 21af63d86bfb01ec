// The driver's table of what differs between the releases of the editor.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

namespace krt9ctl {

inline constexpr std::size_t kProfileControlCount = 6;

struct ProfileControl {
    std::string_view name;
    std::string_view identifier;
    std::string_view role;  // for which the driver searches; empty for the one that it never reads
};

struct EditorProfile {
    std::string_view release;  // the beginning of the row's first versions
    std::array<ProfileControl, kProfileControlCount> controls;  // by FCPXControl
};

// Oldest first.
std::span<const EditorProfile> EditorProfiles();

struct ChosenProfile {
    const EditorProfile& profile;
    bool isKnown;  // false: no row has that version, so it is the last one
};

// The row that the driver takes for a version.
ChosenProfile ProfileOfVersion(std::string_view shortVersion);

}  // namespace krt9ctl
