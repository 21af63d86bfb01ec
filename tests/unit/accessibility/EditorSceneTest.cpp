// The driver beside an editor that behaves like one: a desktop of this process, the real
// front-application observer, and what happens to users while a search is in progress.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "VEKCommon/MessageCodes.h"
#include "desktop/Desktop.h"
#include "desktop/InProcessTransport.h"
#include "frontapplication/FrontApplication.h"
#include "platform/DesktopLink/Transport.h"
#include "platform/Testing/LiveObjects.h"
#include "tests/support/Companion.h"
#include "tests/support/DriverInspector.h"
#include "tests/support/EditorReleases.h"
#include "tests/support/Files.h"
#include "tests/support/Paths.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TestDriver.h"
#include "tests/unit/accessibility/DriverBesideEditor.h"
#include "tests/unit/accessibility/EditorSession.h"

namespace {

using nlohmann::json;
using Session = EditorSession;

json Control(const std::string& role, const std::string& identifier, const json& value) {
    return {{"AXRole", role}, {"AXIdentifier", identifier}, {"AXValue", value}};
}

json Group(const std::vector<json>& children) {
    return {{"AXRole", "AXGroup"}, {"AXChildren", children}};
}

json Editor(const std::string& version, const std::vector<json>& children) {
    json window = {{"AXRole", "AXWindow"}, {"AXChildren", children}};
    return {{"bundleID", "com.apple.FinalCut"},
            {"pid", 501},
            {"info", {{"CFBundleShortVersionString", version}}},
            {"windows", json::array({window})}};
}

json Scene(const json& editor) {
    json finder = {{"bundleID", "com.apple.finder"}, {"pid", 77}, {"windows", json::array()}};
    return {{"trusted", true},
            {"front", "com.apple.FinalCut"},
            {"applications", json::array({editor, finder})}};
}

TEST(EditorScene, EachReleaseIsFollowedByItsOwnIdentifiers) {
    for (const test_support::EditorRelease& release : test_support::kEditorReleases) {
        const int row = release.row;
        const auto& identifiers = CVEK_UserSpaceDriver::sFCPXAXIDsForVersions[row];
        json playhead = {{"AXRole", "AXValueIndicator"},
                         {"AXDescription", "Playhead"},
                         {"AXValueDescription", "01:00:00:00"}};
        json area = {{"AXRole", "AXLayoutArea"},
                     {"AXIdentifier", TextOf(identifiers[3])},
                     {"AXChildren", json::array({playhead})}};
        Session session(Scene(
            Editor(release.scene,
                   {Group({Control("AXStaticText", TextOf(identifiers[4]), "Interview"), area})})));
        CFStringRef version = nullptr;
        ASSERT_TRUE(CFWorkspace_FrontApplicationShortVersion(&version));
        EXPECT_EQ(TextOf(version), release.scene);
        DriverInspector::Profile(session.Driver()) =
            CVEK_UserSpaceDriver::ProfileForVersion(version);
        EXPECT_EQ(DriverInspector::Profile(session.Driver()), row);
        session->ObserveFCPXClipSelectionChange();
        session->ObserveFCPXTimelineTimecode();
        for (int tick = 0; tick < 4; ++tick) {
            session->ObserveFCPXClipSelectionTask();
            session->ObserveFCPXTimelineTimecodeTask();
        }
        EXPECT_THAT(session.Sent(), testing::UnorderedElementsAre("Interview", "01:00:00:00"))
            << release.scene;
    }
}

TEST(EditorScene, PressingACheckBoxFlipsItsValue) {
    Session session(Scene(Editor("10.4.6", {Control("AXCheckBox", "_NS:1", 0)})));
    EXPECT_EQ(session.Value("_NS:1"), 0U);
    EXPECT_TRUE(session->PressButtonWithID(CFSTR("_NS:1")));
    EXPECT_EQ(session.Value("_NS:1"), 1U);
}

TEST(EditorScene, SettingARadioGroupSelectsTheButtonThatIsThenReported) {
    json group = {{"AXRole", "AXRadioGroup"},
                  {"AXIdentifier", "_NS:1"},
                  {"AXChildren",
                   json::array({Control("AXRadioButton", "", 1), Control("AXRadioButton", "", 0),
                                Control("AXRadioButton", "", 0)})}};
    Session session(Scene(Editor("10.4.6", {group})));
    unsigned selected = 99;
    EXPECT_TRUE(session->GetValueOfAXRadioGroupWithID(CFSTR("_NS:1"), selected));
    EXPECT_EQ(selected, 0U);
    EXPECT_TRUE(SelectRadioButton(session.Driver(), CFSTR("_NS:1"), 2));
    EXPECT_TRUE(session->GetValueOfAXRadioGroupWithID(CFSTR("_NS:1"), selected));
    EXPECT_EQ(selected, 2U);
    EXPECT_FALSE(SelectRadioButton(session.Driver(), CFSTR("_NS:1"), 3));
}

TEST(EditorScene, ATextThatIsSetIsConfirmedAndStays) {
    Session session(Scene(Editor("10.4.6", {Control("AXTextField", "_NS:1", "before")})));
    EXPECT_FALSE(session->SetIntValueAsStringOfElementWithID(CFSTR("_NS:1"), -17));
    EXPECT_EQ(TextOf(session->GetStringValueOfElementWithID(CFSTR("_NS:1"))), "-17");
}

TEST(EditorScene, WithoutPermissionNothingIsFound) {
    Session session(Scene(Editor("10.4.6", {Control("AXCheckBox", "_NS:1", 1)})));
    session.Do({{"command", "trust"}, {"trusted", false}});
    EXPECT_EQ(session.Value("_NS:1"), std::nullopt);
    session.Do({{"command", "trust"}, {"trusted", true}});
    EXPECT_EQ(session.Value("_NS:1"), 1U);
}

TEST(EditorScene, AnotherApplicationInFrontIsSearchedInstead) {
    Session session(Scene(Editor("10.4.6", {Control("AXCheckBox", "_NS:1", 1)})));
    session.Do({{"command", "activate"}, {"application", "com.apple.finder"}});
    EXPECT_EQ(session.Value("_NS:1"), std::nullopt);
    session.Do({{"command", "activate"}, {"application", "com.apple.FinalCut"}});
    EXPECT_EQ(session.Value("_NS:1"), 1U);
}

TEST(EditorScene, ASearchUnderWayStaysWithTheApplicationItBeganIn) {
    Session session(Scene(Editor("10.4.6", {Group({Control("AXCheckBox", "_NS:1", 1)})})));
    session.WhenRead("/0/0", {{"command", "activate"}, {"application", "com.apple.finder"}});
    EXPECT_EQ(session.Value("_NS:1"), 1U);
    EXPECT_EQ(session.Value("_NS:1"), std::nullopt) << "the next one sees the other application";
}

TEST(EditorScene, AnEditorThatDiesUnderASearchYieldsNothing) {
    Session session(Scene(Editor("10.4.6", {Group({Control("AXCheckBox", "_NS:1", 1)})})));
    session.WhenRead("/0/0", {{"command", "kill"}, {"application", "com.apple.FinalCut"}});
    EXPECT_EQ(session.Value("_NS:1"), std::nullopt);
}

TEST(EditorScene, AnEditorThatHangsUnderASearchYieldsNothingAndIsFoundAgainAfterwards) {
    Session session(Scene(Editor("10.4.6", {Group({Control("AXCheckBox", "_NS:1", 1)})})));
    session.WhenRead("/0/0", {{"command", "hang"}, {"application", "com.apple.FinalCut"}});
    EXPECT_EQ(session.Value("_NS:1"), std::nullopt);
    session.Do({{"command", "unhang"}, {"application", "com.apple.FinalCut"}});
    EXPECT_EQ(session.Value("_NS:1"), 1U);
}

TEST(EditorScene, AControlRemovedUnderASearchIsPassedOver) {
    Session session(Scene(Editor("10.4.6", {Group({Control("AXCheckBox", "_NS:1", 1),
                                                   Control("AXCheckBox", "_NS:1", 2)})})));
    session.WhenRead("/0/0", {{"command", "remove"}, {"element", "/0/0/0"}});
    EXPECT_EQ(session.Value("_NS:1"), 2U);
}

TEST(EditorScene, AControlAddedWhereTheSearchHasYetToComeIsFound) {
    Session session(Scene(Editor("10.4.6", {Group({Control("AXButton", "_NS:5", 0)}),
                                            Group({Control("AXButton", "_NS:6", 0)})})));
    session.WhenRead("/0/0", {{"command", "insert"},
                              {"parent", "/0/1"},
                              {"element", Control("AXCheckBox", "_NS:1", 3)}});
    EXPECT_EQ(session.Value("_NS:1"), 3U);
}

// --- The scenes that come with the driver --------------------------------------------------------

class ShippedScene : public testing::TestWithParam<test_support::EditorRelease> {
  protected:
    static std::string Text() {
        return test_support::ContentOf(KRT9_SCENES "/editor-" + std::string(GetParam().scene) +
                                       ".json");
    }

    // What the companion is told in this many ticks.
    std::vector<std::string> Told(int ticks) {
        for (int tick = 0; tick < ticks; ++tick) {
            session_->TimeoutCounter();
        }
        return session_.Sent();
    }

    // The script's next step, and what comes of it.
    std::vector<std::string> ToldAfterStep(int ticks = 1) {
        session_.Do({{"command", "step"}});
        return Told(ticks);
    }

    Session session_{Text()};
};

TEST_P(ShippedScene, PlaysClipsOfEachSourceThePlayheadAndTheTimelineIndex) {
    using testing::ElementsAre;
    using testing::IsEmpty;
    constexpr int round = 3;  // ticks in which each source has its turn
    const bool oneText = GetParam().row == kProfile10_3;
    DriverInspector::LocaleSent(session_.Driver()) = true;
    DriverInspector::StatusValid(session_.Driver()) = true;
    session_->ObserveFCPXClipSelectionChange();
    session_->ObserveFCPXTimelineTimecode();
    EXPECT_THAT(Told(round), testing::UnorderedElementsAre("no clip selected", "01:00:00:00"));
    EXPECT_THAT(ToldAfterStep(), ElementsAre("Harbour Wide"));
    EXPECT_THAT(ToldAfterStep(), ElementsAre("01:00:05:00"));
    EXPECT_THAT(ToldAfterStep(), ElementsAre("01:00:05:12"));
    EXPECT_THAT(ToldAfterStep(2), IsEmpty()) << "the second source tells the same name";
    EXPECT_THAT(ToldAfterStep(), ElementsAre("Interview Anna 1"));
    EXPECT_THAT(ToldAfterStep(), IsEmpty()) << "another application is in front";
    EXPECT_THAT(ToldAfterStep(), IsEmpty()) << "the editor again";
    EXPECT_THAT(ToldAfterStep(round), IsEmpty()) << "the clip table tells the same name";
    EXPECT_THAT(ToldAfterStep(round), ElementsAre("Gulls"));
    EXPECT_THAT(ToldAfterStep(round), IsEmpty());
    EXPECT_FALSE(DriverInspector::TimelineIndexVisible(session_.Driver()));
    EXPECT_THAT(ToldAfterStep(round), IsEmpty()) << "the timeline index is closed";
    EXPECT_THAT(ToldAfterStep(round), ElementsAre("Crowd"));
    EXPECT_TRUE(DriverInspector::TimelineIndexVisible(session_.Driver()));
    EXPECT_THAT(ToldAfterStep(round), IsEmpty()) << "the first text tells the same name";
    if (!oneText) {
        EXPECT_THAT(ToldAfterStep(), IsEmpty()) << "the second text has its identifier again";
    }
    EXPECT_THAT(ToldAfterStep(), ElementsAre("no clip selected"));
    EXPECT_THAT(session_.Desktop().Run(R"({"command": "step"})"), testing::HasSubstr("at its end"));
}

// Under AddressSanitizer, which records the stack of every allocation, those two that differ most.
#if __has_feature(address_sanitizer)
const auto kShipped = testing::Values(test_support::kEditorReleases[kProfile10_1],
                                      test_support::kEditorReleases[kProfile10_3]);
#else
const auto kShipped = testing::ValuesIn(test_support::kEditorReleases);
#endif

INSTANTIATE_TEST_SUITE_P(Editor, ShippedScene, kShipped, [](const auto& version) {
    std::string name = version.param.scene;
    std::replace(name.begin(), name.end(), '.', '_');
    return name;
});

// --- Scenes of a size that no editor reaches -----------------------------------------------------

// Less of it under AddressSanitizer.
#if __has_feature(address_sanitizer)
constexpr unsigned kScale = 20;
#else
constexpr unsigned kScale = 1;
#endif

std::string Repeated(const std::string& text, unsigned count) {
    std::string repeated;
    for (unsigned i = 0; i < count; ++i) {
        repeated += text;
    }
    return repeated;
}

// One window with these children: a list of elements as JSON text.
std::string BigScene(const std::string& children) {
    return R"({"front": "com.apple.FinalCut", "applications": [{"bundleID": "com.apple.FinalCut",
        "windows": [{"AXRole": "AXWindow", "AXChildren": [)" +
           children + "]}]}]}";
}

const std::string kSought = R"({"AXRole": "AXCheckBox", "AXIdentifier": "_NS:1", "AXValue": 7})";

// The window list, the window's children, each child on the way, and then the value.
unsigned long ExchangesForValueBehind(unsigned long children) {
    return 1 + 1 + children + 1;
}

TEST(BigEditorScene, ValueOfTheLastOfAHundredThousandElements) {
    constexpr unsigned kGroups = 1000 / kScale;
    const std::string button = R"({"AXRole": "AXButton", "AXIdentifier": "_NS:2"})";
    const std::string group =
        R"({"AXRole": "AXGroup", "AXChildren": [)" + Repeated(button + ",", 98) + button + "]},";
    Session session(BigScene(Repeated(group, kGroups) + kSought));
    const unsigned long before = desktop_link::ExchangeCount();
    EXPECT_EQ(session.Value("_NS:1"), 7U);
    EXPECT_EQ(desktop_link::ExchangeCount() - before, ExchangesForValueBehind(100 * kGroups + 1));
}

TEST(BigEditorScene, ValueOfAnElementNestedTenThousandDeep) {
    constexpr unsigned kDepth = 10000 / kScale;
    Session session(BigScene(Repeated(R"({"AXRole": "AXGroup", "AXChildren": [)", kDepth) +
                             kSought + Repeated("]}", kDepth)));
    const unsigned long before = desktop_link::ExchangeCount();
    EXPECT_EQ(session.Value("_NS:1"), 7U);
    EXPECT_EQ(desktop_link::ExchangeCount() - before, ExchangesForValueBehind(kDepth + 1));
}

}  // namespace
