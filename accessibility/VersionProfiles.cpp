#include "accessibility/VersionProfiles.h"

#include "driver/CVEK_UserSpaceDriver.h"

const CFStringRef CVEK_UserSpaceDriver::sFCPXAXIDsForVersions[kProfileCount][kProfileColumns] = {
    {CFSTR("_NS:59"), CFSTR("_NS:49"), CFSTR("_NS:114"), CFSTR("_NS:99"), CFSTR("_NS:62"),
     CFSTR("_NS:433")},
    {CFSTR("_NS:63"), CFSTR("_NS:49"), CFSTR("_NS:114"), CFSTR("_NS:99"), CFSTR("_NS:62"),
     CFSTR("_NS:435")},
    {CFSTR("_NS:159"), CFSTR("_NS:16"), CFSTR("_NS:1234"), CFSTR("_NS:16"), CFSTR("_NS:66"),
     CFSTR("_NS:66")},
    {CFSTR("_NS:159"), CFSTR("_NS:139"), CFSTR("_NS:1234"), CFSTR("_NS:363"), CFSTR("_NS:62"),
     CFSTR("_NS:28")},
    {CFSTR("_NS:159"), CFSTR("_NS:139"), CFSTR("_NS:1234"), CFSTR("_NS:352"), CFSTR("_NS:100"),
     CFSTR("_NS:28")},
    {CFSTR("_NS:159"), CFSTR("_NS:139"), CFSTR("_NS:1234"), CFSTR("_NS:393"), CFSTR("_NS:100"),
     CFSTR("_NS:28")},
};

int CVEK_UserSpaceDriver::ProfileForVersion(CFStringRef shortVersion) {
    struct Release {
        CFStringRef prefix;
        FCPXProfile profile;
    };
    // The first match counts. Prefixes are compared as texts: 10.3.40 is taken for 10.3.4.
    const Release releases[] = {
        {CFSTR("10.4.6"), kProfile10_4_5}, {CFSTR("10.4.5"), kProfile10_4_5},
        {CFSTR("10.4"), kProfile10_4},     {CFSTR("10.3.4"), kProfile10_3_4},
        {CFSTR("10.3"), kProfile10_3},     {CFSTR("10.2"), kProfile10_2},
        {CFSTR("10.1"), kProfile10_1},
    };
    if (shortVersion != nullptr) {
        for (const Release& release : releases) {
            if (CFStringHasPrefix(shortVersion, release.prefix)) {
                return release.profile;
            }
        }
    }
    return kProfileForOtherVersions;
}

CFStringRef FCPXIdentifier(int profile, int column) {
    if (profile < 0 || profile >= CVEK_UserSpaceDriver::kProfileCount) {
        profile = CVEK_UserSpaceDriver::kProfileForOtherVersions;
    }
    return CVEK_UserSpaceDriver::sFCPXAXIDsForVersions[profile][column];
}
