// The verb diff: the controls of one release are found again in another.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "tests/support/EditorReleases.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/unit/tools/Carried.h"
#include "tools/ElementMatching.h"
#include "tools/ProfileFit.h"

namespace krt9ctl {
namespace {

using test_support::kEditorReleases;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

// One text is both the first and the second with the clip's name.
bool HasOneName(const EditorProfile& row) {
    return row.controls[4].identifier == row.controls[5].identifier;
}

// From any release to any other, in both directions.
TEST(Diff, FindsTheControlsOfEveryReleaseInEveryOther) {
    const auto rows = EditorProfiles();
    for (std::size_t old = 0; old < rows.size(); ++old) {
        for (std::size_t now = 0; now < rows.size(); ++now) {
            const auto objects = ObjectsOf(Carried({"diff", SceneFileOf(kEditorReleases[old].scene),
                                                    SceneFileOf(kEditorReleases[now].scene)},
                                                   true)
                                               .out);
            for (std::size_t i = 0; i < kProfileControlCount; ++i) {
                const Json& control = objects[i];
                SCOPED_TRACE(control.dump() + kEditorReleases[now].scene);
                EXPECT_EQ(control["old"], rows[old].controls[i].identifier);
                if (i == 0 && rows[old].controls[0].role != rows[now].controls[0].role) {
                    // A group of two radio buttons became one check box with a button's title.
                    EXPECT_LT(control.value("confidence", 0.0), 0.7);
                    continue;
                }
                if (i == 5 && (HasOneName(rows[old]) || HasOneName(rows[now]))) {
                    continue;
                }
                EXPECT_EQ(control["new"], rows[now].controls[i].identifier);
                EXPECT_GT(control.value("confidence", 0.0), i == 0 ? 0.8 : 0.9);
            }
        }
    }
}

TEST(Diff, OfAReleaseAndItselfHasNoChange) {
    const std::string scene = SceneFileOf("10.4.6");
    EXPECT_THAT(Carried({"diff", scene, scene}).out,
                HasSubstr("0 identifiers changed, 197 stayed, 0 are gone, 0 are new:\n"));
}

TEST(Diff, NamesTheControlsThatAChangeTouches) {
    const Outcome outcome = Carried({"diff", SceneFileOf("10.4"), SceneFileOf("10.4.6")});
    EXPECT_THAT(outcome.out, HasSubstr("The controls of the row 10.4:\n"));
    EXPECT_THAT(outcome.out, HasSubstr("  timecode area          _NS:352  -> _NS:393 (100 %)\n"));
    EXPECT_THAT(
        outcome.out,
        HasSubstr("  _NS:352  -> _NS:393  100 %  /0/4/2/1/2/0/0 AXLayoutArea \"Timeline\" "
                  "-> /0/4/2/1/2/0/0; role 100, text 100, place 100, path 100 [timecode area]\n"));
    EXPECT_THAT(outcome.out, Not(HasSubstr("_NS:159  -> _NS:159  100 %"))) << "it stayed";
    EXPECT_THAT(Carried({"diff", SceneFileOf("10.4"), SceneFileOf("10.4.6"), "--all"}).out,
                HasSubstr("_NS:159  -> _NS:159  100 %"));
    EXPECT_THAT(Carried({"diff", SceneFileOf("10.2.3"), SceneFileOf("10.3.2")}).out,
                HasSubstr("_NS:63   -> gone; at its address /0/4/2/0/0 is AXCheckBox _NS:159 now"));
}

// Two windows of the same size.
Outcome Diff(const std::string& old, const std::string& now, bool json = false) {
    const test_support::TemporaryFolder folder;
    const auto scene = [](const std::string& elements) {
        return R"({"applications": [{"bundleID": "a.b", "windows": [{"AXRole": "AXWindow",
            "AXPosition": [0, 0], "AXSize": [1000, 1000], "AXChildren": [)" +
               elements + "]}]}]}";
    };
    return Carried({"diff", folder.Write("old.json", scene(old)).string(),
                    folder.Write("new.json", scene(now)).string(), "--all"},
                   json);
}

std::string Button(const std::string& identifier, int x, const std::string& title = "") {
    return R"({"AXRole": "AXButton", "AXIdentifier": ")" + identifier + R"(", "AXSize": [20, 20],
        "AXPosition": [)" +
           std::to_string(x) + ", 5]" + (title.empty() ? "" : R"(, "AXTitle": ")" + title + "\"") +
           "}";
}

std::map<std::string, std::string> Moves(const std::string& old, const std::string& now) {
    std::map<std::string, std::string> moves;
    for (const Json& object : ObjectsOf(Diff(old, now, true).out)) {
        moves[object["old"].is_null() ? "" : object["old"].get<std::string>()] =
            object["new"].is_null() ? "" : object["new"].get<std::string>();
    }
    return moves;
}

using Pairs = std::map<std::string, std::string>;

TEST(Diff, FollowsTheTextWhereverItGoes) {
    EXPECT_EQ(Moves(Button("a", 10, "Play") + "," + Button("b", 100, "Stop"),
                    Button("c", 10, "Stop") + "," + Button("d", 100, "Play")),
              (Pairs{{"a", "d"}, {"b", "c"}}));
}

TEST(Diff, GoesByThePlaceWhereThereIsNoText) {
    EXPECT_EQ(
        Moves(Button("a", 10) + "," + Button("b", 500), Button("c", 500) + "," + Button("d", 12)),
        (Pairs{{"a", "d"}, {"b", "c"}}));
}

TEST(Diff, TellsWhatIsGoneAndWhatIsNew) {
    const std::string slider = R"({"AXRole": "AXSlider", "AXIdentifier": "s"})";
    EXPECT_EQ(Moves(Button("a", 10) + "," + slider, Button("c", 10)),
              (Pairs{{"a", "c"}, {"s", ""}}));
    EXPECT_EQ(Moves(Button("a", 10), Button("c", 10) + "," + slider),
              (Pairs{{"a", "c"}, {"", "s"}}));
    const auto gone = Diff(slider, Button("c", 10));
    EXPECT_THAT(gone.out, HasSubstr("0 identifiers changed, 0 stayed, 1 are gone, 1 are new:\n"
                                    "  s        gone  /0/0 AXSlider\n"
                                    "  c        new   /0/0 AXButton\n"));
}

TEST(Diff, IsLessConfidentWhenAnotherElementIsNearlyAsAlike) {
    const auto confidence = [](const std::string& now) {
        return ObjectsOf(Diff(Button("a", 10), now, true).out)[0]["confidence"].get<double>();
    };
    const double alone = confidence(Button("c", 10));
    const double withTwin = confidence(Button("c", 10) + "," + Button("d", 11));
    EXPECT_GT(alone, 0.95);
    EXPECT_LT(withTwin, 0.75);
}

TEST(Diff, HasNoControlsForWhatIsNoEditor) {
    EXPECT_THAT(Diff(Button("a", 10), Button("b", 10)).out, Not(HasSubstr("The controls")));
}

TEST(Diff, LeavesNoControlCharacterInALine) {
    EXPECT_THAT(Diff(Button("\\u001b[2J", 10, "\\u0007"), Button("\\u001b", 10, "\\u0007")).out,
                Not(testing::ContainsRegex("[\x01-\x09\x0b-\x1f]")));
}

ElementList Buttons(std::size_t count) {
    ElementList list(2);
    list[1].role = "AXWindow";
    for (std::size_t i = 0; i < count; ++i) {
        ListedElement button;
        button.role = "AXButton";
        button.identifier = std::to_string(i);
        button.parent = 1;
        AddElement(list, button);
    }
    return list;
}

TEST(Matching, RefusesMorePairsThanItCouldCompare) {
    const auto ignore = [](std::size_t) {};
    EXPECT_THROW(MatchElements(Buttons(10000), Buttons(5001), ignore), std::runtime_error);
    const ElementMatching none = MatchElements(Buttons(10000), Buttons(0), ignore);
    EXPECT_THAT(none.matches, IsEmpty());
    EXPECT_THAT(none.gone, SizeIs(10000));
    EXPECT_THAT(MatchElements(Buttons(0), Buttons(1), ignore).added, ElementsAre(2U));
}

TEST(Matching, GivesEachElementToOneOnly) {
    const ElementMatching matching = MatchElements(Buttons(3), Buttons(2), [](std::size_t) {});
    EXPECT_THAT(matching.matches, SizeIs(2));
    EXPECT_THAT(matching.gone, SizeIs(1));
}

}  // namespace
}  // namespace krt9ctl
