#include "accessibility/VersionProfiles.h"

#include <algorithm>
#include <iterator>

#include "driver/CVEK_UserSpaceDriver.h"

const CFStringRef CVEK_UserSpaceDriver::sFCPXAXIDsForVersions[kProfileCount][kProfileColumns] = {
#define EDITOR_RELEASE(row, prefix, scene, toggle, table, unread, area, name, secondName) \
    {CFSTR(toggle), CFSTR(table), CFSTR(unread), CFSTR(area), CFSTR(name), CFSTR(secondName)},
#define EDITOR_RELEASE_ALIKE(row, prefix)
#include "accessibility/EditorReleases.def"
#undef EDITOR_RELEASE
#undef EDITOR_RELEASE_ALIKE
};

int CVEK_UserSpaceDriver::ProfileForVersion(CFStringRef shortVersion) {
    struct Release {
        CFStringRef prefix;
        FCPXProfile profile;
    };
    const Release releases[] = {
#define EDITOR_RELEASE(row, prefix, scene, ...) {CFSTR(prefix), row},
#define EDITOR_RELEASE_ALIKE(row, prefix) {CFSTR(prefix), row},
#include "accessibility/EditorReleases.def"
#undef EDITOR_RELEASE
#undef EDITOR_RELEASE_ALIKE
    };
    if (shortVersion == nullptr) {
        return kProfileForOtherVersions;
    }
    // The last match counts. Prefixes are compared as texts: 10.3.40 is taken for 10.3.4.
    const auto release = std::find_if(std::rbegin(releases), std::rend(releases),
                                      [shortVersion](const Release& candidate) {
                                          return CFStringHasPrefix(shortVersion, candidate.prefix);
                                      });
    return release != std::rend(releases) ? release->profile : kProfileForOtherVersions;
}

CFStringRef FCPXIdentifier(int profile, int column) {
    if (profile < 0 || profile >= CVEK_UserSpaceDriver::kProfileCount) {
        profile = CVEK_UserSpaceDriver::kProfileForOtherVersions;
    }
    return CVEK_UserSpaceDriver::sFCPXAXIDsForVersions[profile][column];
}
