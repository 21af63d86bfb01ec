// The verb profile: which row of the driver's table an editor fits.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/Paths.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/unit/tools/Carried.h"
#include "tools/ProfileFit.h"

namespace krt9ctl {
namespace {

using test_support::ScriptedDesktop;
using testing::HasSubstr;

struct Release {
    std::string row, version;
};

const Release kReleases[] = {
#define EDITOR_RELEASE(row, prefix, scene, ...) {prefix, scene},
#define EDITOR_RELEASE_ALIKE(row, prefix)
#include "accessibility/EditorReleases.def"
#undef EDITOR_RELEASE
#undef EDITOR_RELEASE_ALIKE
};

TEST(Profile, OfEachReleaseFitsTheRowThatTheDriverUsesForIt) {
    for (const Release& release : kReleases) {
        const std::string file = SceneFileOf(release.version);
        const Outcome outcome = Carried({"profile", file}, true);
        EXPECT_EQ(outcome.code, ExitCode::ok);
        std::size_t fitting = 0;
        for (const Json& row : ObjectsOf(outcome.out)) {
            EXPECT_EQ(row["used"], row["row"] == release.row) << release.version;
            EXPECT_EQ(row["best"], row["row"] == release.row) << release.version;
            EXPECT_EQ(row["found"] == 6, row["row"] == release.row) << release.version;
            fitting += row["found"] == 6 ? 1U : 0U;
        }
        EXPECT_EQ(fitting, 1U) << release.version;
    }
}

TEST(Profile, UsesTheRowOfTheLongestPrefix) {
    const auto rowFor = [](const char* version) {
        return EditorProfiles()[ProfileRowFor(version)].release;
    };
    EXPECT_EQ(rowFor("10.1.4"), "10.1");
    EXPECT_EQ(rowFor("10.3.2"), "10.3");
    EXPECT_EQ(rowFor("10.3.4"), "10.3.4");
    EXPECT_EQ(rowFor("10.3.40"), "10.3.4");
    EXPECT_EQ(rowFor("10.4.4"), "10.4");
    EXPECT_EQ(rowFor("10.4.6"), "10.4.5");
    EXPECT_EQ(rowFor("11.0"), "10.4.5");
    EXPECT_EQ(ProfileRowFor(std::nullopt), EditorProfiles().size() - 1);
}

// The toggle and the first name of row 10.1, its clip table out of reach, an element of another
// role with the second name's identifier.
constexpr char kEditor[] = R"({"front": "com.apple.FinalCut", "applications": [
    {"bundleID": "com.apple.FinalCut", "name": "Editor", "info": {"CFBundleShortVersionString":
     "10.4.6"}, "windows": [{"AXRole": "AXWindow", "AXChildren": [
      {"AXRole": "AXRadioGroup", "AXIdentifier": "_NS:59"},
      {"AXRole": "AXStaticText", "AXIdentifier": "_NS:62"},
      {"AXRole": "AXSlider", "AXIdentifier": "_NS:433"},
      {"AXRole": "AXTable", "AXChildren": [{"AXRole": "AXTable", "AXIdentifier": "_NS:49"}]}
    ]}]}]})";

TEST(Profile, SaysOfEachControlWhyItIsNotFound) {
    const ScriptedDesktop session(kEditor);
    const test_support::TemporaryFolder folder;
    const std::string file = folder.Write("scene.json", kEditor);
    const Outcome outcome = Carried({"profile", file});
    EXPECT_EQ(outcome.code, ExitCode::ok);
    EXPECT_THAT(outcome.out,
                HasSubstr("com.apple.FinalCut 10.4.6: the driver uses the row 10.4.5, and the row "
                          "10.1 fits better\n"
                          "* 10.1    2 of 6; not: clip table _NS:49 at /0/3/0, out of the search's "
                          "reach, unread control _NS:114, timecode area _NS:99, second clip name "
                          "_NS:433 is AXSlider "
                          "/0/2\n"));
    EXPECT_EQ(Carried({"profile"}).out, outcome.out) << "the running editor is as its scene";
    const Json row = ObjectsOf(Carried({"profile", file}, true).out)[0];
    const char* const fits[] = {"found",   "out-of-reach", "missing",
                                "missing", "found",        "other-role"};
    for (std::size_t i = 0; i < std::size(fits); ++i) {
        EXPECT_EQ(row["controls"][i]["fit"], fits[i]) << i;
    }
    EXPECT_EQ(row["controls"][0]["path"], "/0/0");
    EXPECT_FALSE(row["controls"][2].contains("path"));
}

TEST(Profile, TellsThatAnApplicationIsNoEditor) {
    const ScriptedDesktop session(
        R"({"front": "a.b", "applications": [{"bundleID": "a.b", "windows": []}]})");
    const Outcome outcome = Carried({"profile"});
    EXPECT_EQ(outcome.code, ExitCode::notThere);
    EXPECT_THAT(outcome.err, HasSubstr("a.b has none of the controls of any row"));
}

}  // namespace
}  // namespace krt9ctl
