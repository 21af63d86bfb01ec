// How well an application fits each row of the driver's table of the editor's releases.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/EditorProfiles.h"
#include "tools/ElementList.h"

namespace krt9ctl {

enum class ProfileFit {
    found,    // the driver's search finds it; that one which nothing reads: it is there
    reach,    // it is there, but the search does not come to it
    role,     // only elements of other roles have its identifier
    missing,  // no element has its identifier
};

std::string_view ProfileFitName(ProfileFit fit);  // in JSON

struct FittedControl {
    ProfileFit fit = ProfileFit::missing;
    std::size_t place = 0;  // of the element in the list, unless it is missing
};

struct FittedRow {
    std::array<FittedControl, kProfileControlCount> controls;
    std::size_t found = 0;  // how many of them
};

// The index of the row that the driver uses for a version.
std::size_t ProfileRowFor(const std::optional<std::string>& shortVersion);

// One for each row.
std::vector<FittedRow> FitProfiles(const ElementList& list);

// The row with the most controls found; of several the given one, or else the newest.
std::size_t BestRow(const std::vector<FittedRow>& fitted, std::size_t preferred);

}  // namespace krt9ctl
