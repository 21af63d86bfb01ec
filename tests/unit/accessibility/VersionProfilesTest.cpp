#include "VEKCommon/Names.h"
#include "accessibility/VersionProfiles.h"
#include "driver/CVEK_UserSpaceDriver.h"
#include "tests/unit/accessibility/AccessibilityTest.h"

namespace {

int ProfileOf(const std::string& version) {
    return CVEK_UserSpaceDriver::ProfileForVersion(String(version).get());
}

TEST(VersionProfiles, ReleasesSelectTheirRow) {
    EXPECT_EQ(ProfileOf("10.1"), 0);
    EXPECT_EQ(ProfileOf("10.1.4"), 0);
    EXPECT_EQ(ProfileOf("10.2"), 1);
    EXPECT_EQ(ProfileOf("10.2.3"), 1);
    EXPECT_EQ(ProfileOf("10.3"), 2);
    EXPECT_EQ(ProfileOf("10.3.2"), 2);
    EXPECT_EQ(ProfileOf("10.3.4"), 3);
    EXPECT_EQ(ProfileOf("10.4"), 4);
    EXPECT_EQ(ProfileOf("10.4.1"), 4);
    EXPECT_EQ(ProfileOf("10.4.4"), 4);
    EXPECT_EQ(ProfileOf("10.4.7"), 4);
    EXPECT_EQ(ProfileOf("10.4.5"), 5);
    EXPECT_EQ(ProfileOf("10.4.6"), 5);
}

TEST(VersionProfiles, AnyOtherReleaseSelectsRow5) {
    for (const char* version : {"10.5", "11.0", "10.0", "10.0.9", "9", "1", "", " 10.1", "v10.2",
                                "10", "10.", "10,3", "\xF0\x9F\x8E\xAC"}) {
        EXPECT_EQ(ProfileOf(version), 5) << version;
    }
    EXPECT_EQ(CVEK_UserSpaceDriver::ProfileForVersion(nullptr), 5);
}

TEST(VersionProfiles, ReleasesAreToldByTheirPrefix) {
    EXPECT_EQ(ProfileOf("10.3.40"), 3);
    EXPECT_EQ(ProfileOf("10.4.55"), 5);
    EXPECT_EQ(ProfileOf("10.40"), 4);
    EXPECT_EQ(ProfileOf("10.10"), 0);
    EXPECT_EQ(ProfileOf("10.2beta"), 1);
}

TEST(VersionProfiles, TheTableHoldsTheseIdentifiers) {
    const char* expected[6][6] = {
        {"_NS:59", "_NS:49", "_NS:114", "_NS:99", "_NS:62", "_NS:433"},
        {"_NS:63", "_NS:49", "_NS:114", "_NS:99", "_NS:62", "_NS:435"},
        {"_NS:159", "_NS:16", "_NS:1234", "_NS:16", "_NS:66", "_NS:66"},
        {"_NS:159", "_NS:139", "_NS:1234", "_NS:363", "_NS:62", "_NS:28"},
        {"_NS:159", "_NS:139", "_NS:1234", "_NS:352", "_NS:100", "_NS:28"},
        {"_NS:159", "_NS:139", "_NS:1234", "_NS:393", "_NS:100", "_NS:28"},
    };
    for (int row = 0; row < 6; ++row) {
        for (int column = 0; column < 6; ++column) {
            EXPECT_EQ(TextOf(CVEK_UserSpaceDriver::sFCPXAXIDsForVersions[row][column]),
                      expected[row][column])
                << "row " << row << ", column " << column;
            EXPECT_EQ(TextOf(FCPXIdentifier(row, column)), expected[row][column]);
        }
    }
}

TEST(VersionProfiles, ARowThatTheTableDoesNotHaveCountsAsTheLast) {
    for (int row : {-1, 6, 7, 1 << 30, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(TextOf(FCPXIdentifier(row, kTimecodeArea)), "_NS:393") << row;
    }
}

TEST(VersionProfiles, ConstantsHaveTheirTexts) {
    EXPECT_EQ(TextOf(kVEK_FCPX_ToggleTimelineIndexButtonID), "_TTIB");
    EXPECT_EQ(TextOf(CFSTR(kEditorBundleID)), "com.apple.FinalCut");
    EXPECT_EQ(TextOf(kVEK_AXRole_AllValidRoles), "VEKAXAllRoles");
    EXPECT_EQ(TextOf(kVEK_CF_Key_Application_ID), "VEKAPPID");
}

}  // namespace
