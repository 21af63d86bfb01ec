// Windows found by title, and the choice of a target window among candidates.

#include <cstring>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#import <AppKit/AppKit.h>

#include "platform/DesktopLink/Transport.h"
#include "platform/Testing/LiveObjects.h"
#include "platform/Testing/LogCapture.h"
#include "tests/support/DriverInspector.h"
#include "tests/support/InProcessDesktop.h"
#include "tests/support/TestDriver.h"
#include "workspace/FrontApplication.h"
#import "workspace/VEK_Driver_FrontAppObserver.h"

namespace {

using test_support::InProcessDesktop;

const char* const kWindows = R"([
  { "AXRole": "AXWindow", "AXTitle": "Event Viewer", "AXPosition": [10, 20], "AXSize": [300, 200] },
  { "AXRole": "AXWindow", "AXTitle": "Final Cut Pro", "AXPosition": [0, 22], "AXSize": [1440, 878] },
  { "AXRole": "AXWindow", "AXTitle": "Farben: Clip 7", "AXPosition": [500, -40], "AXSize": [320.5, 240.75] }
])";

std::string Scene(const std::string& windows) {
    return R"({"front": "com.apple.FinalCut", "applications": [{"bundleID": "com.apple.FinalCut",
        "name": "Editor", "pid": 501, "windows": )" +
           windows + "}]}";
}

VEK_Driver_TargetWindowInfo Candidate(const char* key, const char* subWindowKey = nullptr) {
    VEK_Driver_TargetWindowInfo info = {};
    strncpy(info.windowName, key, sizeof info.windowName - 1);
    if (subWindowKey != nullptr) {
        info.hasSubWindow = true;
        strncpy(info.subWindowName, subWindowKey, sizeof info.subWindowName - 1);
    }
    return info;
}

class WindowLookup : public testing::Test {
  protected:
    explicit WindowLookup(const std::string& scene = Scene(kWindows)) : desktop(scene) {
        [[[VEK_Driver_FrontAppObserver alloc] init] release];  // a new shared observer
        CFWorkspace_StartObservingFrontApplication();
        home = std::filesystem::path(testing::TempDir()) / "window-lookup-home";
        std::filesystem::create_directories(Folder());
        setenv("HOME", home.c_str(), 1);
    }
    ~WindowLookup() override { std::filesystem::remove_all(home); }

    std::filesystem::path Folder() const { return home / "Library/Application Support/Solvanto"; }

    // Translations of the driver's current language, which is `tag` from now on.
    void Translate(const std::string& tag, const std::string& entries) {
        strncpy(DriverInspector::Language(*driver), tag.c_str(), 31);
        std::ofstream(Folder() / (tag + ".plist"))
            << R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>)" << entries
            << "</dict></plist>";
    }

    bool Find(std::vector<VEK_Driver_TargetWindowInfo> candidates) {
        return driver->GetPosAndSizeForTargetWindow(
            candidates.data(), static_cast<unsigned>(candidates.size()), index, position, size);
    }

    platform_testing::AutoreleasePool pool;
    InProcessDesktop desktop;
    test_support::TestDriver driver;
    std::filesystem::path home;
    unsigned index = 99;
    CGPoint position = {-1, -1};
    CGSize size = {-1, -1};
};

// --- by name -------------------------------------------------------------------------------------

TEST_F(WindowLookup, ExactNameReportsTheFrameAndMakesTheWindowMain) {
    std::string name = "Final Cut Pro";
    ASSERT_TRUE(driver->GetPosAndSizeForWindowName(name, false, position, size));
    EXPECT_EQ(position.x, 0);
    EXPECT_EQ(position.y, 22);
    EXPECT_EQ(size.width, 1440);
    EXPECT_EQ(size.height, 878);
    CFTypeRef isMain = nullptr;
    AXUIElementRef window = driver->GetWindowElementWithTitle(@"Final Cut Pro", false);
    ASSERT_EQ(AXUIElementCopyAttributeValue(window, kAXMainAttribute, &isMain), kAXErrorSuccess);
    EXPECT_EQ(isMain, kCFBooleanTrue);
    CFRelease(isMain);
}

TEST_F(WindowLookup, ExactMatchingIsCaseSensitive) {
    std::string name = "Final cut Pro";
    EXPECT_FALSE(driver->GetPosAndSizeForWindowName(name, false, position, size));
    EXPECT_EQ(position.x, -1) << "no output is written on failure";
    EXPECT_EQ(size.width, -1);
}

TEST_F(WindowLookup, ExactMatchingTakesTheWholeTitle) {
    std::string name = "Final Cut";
    EXPECT_FALSE(driver->GetPosAndSizeForWindowName(name, false, position, size));
}

TEST_F(WindowLookup, PartialMatchingFindsTheNameAnywhereInTheTitle) {
    std::string name = "Clip 7";
    ASSERT_TRUE(driver->GetPosAndSizeForWindowName(name, true, position, size));
    EXPECT_EQ(position.y, -40);
    EXPECT_EQ(size.width, 320.5);
}

TEST_F(WindowLookup, PartialMatchingIsCaseSensitive) {
    std::string name = "clip 7";
    EXPECT_FALSE(driver->GetPosAndSizeForWindowName(name, true, position, size));
}

TEST_F(WindowLookup, MatchingTellsComposedAndDecomposedCharactersApart) {
    NSString* composed = [NSString stringWithUTF8String:"Caf\u00e9"];
    NSString* decomposed = [NSString stringWithUTF8String:"Cafe\u0301"];
    for (const bool partial : {false, true}) {
        EXPECT_TRUE(driver->MatchWindowTitle(composed, composed, partial));
        EXPECT_FALSE(driver->MatchWindowTitle(composed, decomposed, partial));
        EXPECT_FALSE(driver->MatchWindowTitle(decomposed, composed, partial));
    }
}

TEST_F(WindowLookup, PartialMatchingWithAnEmptyNameNeverMatches) {
    std::string name;
    EXPECT_FALSE(driver->GetPosAndSizeForWindowName(name, true, position, size));
}

TEST_F(WindowLookup, FirstMatchingWindowInListOrderWins) {
    AXUIElementRef window = driver->GetWindowElementWithTitle(@"i", true);
    ASSERT_NE(window, nullptr);
    CFTypeRef title = nullptr;
    ASSERT_EQ(AXUIElementCopyAttributeValue(window, kAXTitleAttribute, &title), kAXErrorSuccess);
    EXPECT_STREQ([(NSString*)title UTF8String], "Event Viewer");
    CFRelease(title);
}

TEST_F(WindowLookup, WindowWithoutReadableTitleIsSkippedByNameLookup) {
    desktop.Run(R"({"command": "set", "element": "/0", "attribute": "AXTitle",
                    "value": {"error": -25204}})");
    std::string name = "Final Cut Pro";
    EXPECT_TRUE(driver->GetPosAndSizeForWindowName(name, false, position, size));
}

TEST_F(WindowLookup, NameThatIsNoUTF8FindsNothing) {
    std::string name = "\xFF\xFE";
    EXPECT_FALSE(driver->GetPosAndSizeForWindowName(name, true, position, size));
}

TEST_F(WindowLookup, NilTitleFindsNothing) {
    EXPECT_EQ(driver->GetWindowElementWithTitle((NSString*)nil, true), nullptr);
}

// --- scenes of their own -------------------------------------------------------------------------

class OtherWindows : public WindowLookup {
  protected:
    OtherWindows() : WindowLookup(Scene("[]")) {}
    void Use(const std::string& windows) {
        other = std::make_unique<InProcessDesktop>(Scene(windows));
        [[[VEK_Driver_FrontAppObserver alloc] init] release];
        CFWorkspace_StartObservingFrontApplication();
    }
    std::unique_ptr<InProcessDesktop> other;
};

TEST_F(OtherWindows, NoWindowsYieldFalseFromEveryLookup) {
    std::string name = "Final Cut Pro";
    EXPECT_FALSE(driver->GetPosAndSizeForWindowName(name, false, position, size));
    EXPECT_FALSE(Find({Candidate("Final Cut Pro")}));
    EXPECT_EQ(driver->GetWindowElementWithTitle(@"a", true), nullptr);
    EXPECT_EQ([driver->CopyApplicationWindowList(false, @"") count], 0u);
}

TEST_F(OtherWindows, WindowListThatFailsYieldsFalse) {
    Use(R"({"error": -25204})");
    platform_testing::LogCapture log;
    EXPECT_EQ(driver->CopyApplicationWindowList(true, @"tag"), nil);
    EXPECT_THAT(
        log.ConsoleTexts(),
        testing::ElementsAre(testing::HasSubstr("CopyApplicationWindowList"),
                             testing::HasSubstr("CopyApplicationWindowList tag retain count = 1"),
                             testing::HasSubstr("CopyApplicationWindowList tag "
                                                "AXUIElementCopyAttributeValue err = ffff9d8c")));
    EXPECT_FALSE(Find({Candidate("a")}));
}

TEST_F(WindowLookup, NoProcessInFrontYieldsFalseFromEveryLookup) {
    [[VEK_Driver_FrontAppObserver frontAppObserver] setProcessID:-1];
    const unsigned long before = desktop_link::ExchangeCount();
    std::string name = "Final Cut Pro";
    EXPECT_FALSE(driver->GetPosAndSizeForWindowName(name, false, position, size));
    EXPECT_FALSE(Find({Candidate("Final Cut Pro")}));
    EXPECT_EQ(driver->GetWindowElementWithTitle(@"Final Cut Pro", false), nullptr);
    EXPECT_EQ(driver->CopyApplicationWindowList(false, @""), nil);
    EXPECT_EQ(desktop_link::ExchangeCount(), before) << "nothing is asked";
}

TEST_F(WindowLookup, WindowListAndFrameAreReadAnewByEveryLookup) {
    std::string name = "Final Cut Pro";
    ASSERT_TRUE(driver->GetPosAndSizeForWindowName(name, false, position, size));
    desktop.Run(R"({"command": "set", "element": "/1", "attribute": "AXPosition",
                    "value": [7, 8]})");
    ASSERT_TRUE(driver->GetPosAndSizeForWindowName(name, false, position, size));
    EXPECT_EQ(position.x, 7);
    desktop.Run(R"({"command": "remove", "element": "/1"})");
    EXPECT_FALSE(driver->GetPosAndSizeForWindowName(name, false, position, size));
}

TEST_F(OtherWindows, RefusedMainAttributeReportsNoFrame) {
    Use(R"([{ "AXRole": "AXWindow", "AXTitle": "Viewer", "AXPosition": [1, 2], "AXSize": [3, 4] }])");
    other->Run(R"({"command": "misbehave", "element": "/0",
                   "misbehaviour": {"set": {"AXMain": {"error": -25205, "works": false}}}})");
    std::string name = "Viewer";
    EXPECT_FALSE(driver->GetPosAndSizeForWindowName(name, false, position, size));
    EXPECT_EQ(position.x, -1);
}

TEST_F(OtherWindows, PositionOfAnotherTypeWritesNeitherOutput) {
    Use(R"([{ "AXRole": "AXWindow", "AXTitle": "Viewer", "AXPosition": {"size": [1, 2]},
              "AXSize": [3, 4] }])");
    std::string name = "Viewer";
    EXPECT_FALSE(driver->GetPosAndSizeForWindowName(name, false, position, size));
    EXPECT_EQ(position.x, -1);
    EXPECT_EQ(size.width, -1);
}

TEST_F(OtherWindows, UnreadableSizeWritesNeitherOutput) {
    Use(R"([{ "AXRole": "AXWindow", "AXTitle": "Viewer", "AXPosition": [1, 2],
              "AXSize": {"error": -25212} }])");
    std::string name = "Viewer";
    EXPECT_FALSE(driver->GetPosAndSizeForWindowName(name, false, position, size));
    EXPECT_EQ(position.x, -1);
    EXPECT_EQ(size.width, -1);
}

// --- target windows ------------------------------------------------------------------------------

TEST_F(WindowLookup, WithoutDictionaryTheKeyItselfIsCompared) {
    ASSERT_TRUE(Find({Candidate("Nowhere"), Candidate("Final Cut")}));
    EXPECT_EQ(index, 1u);
    EXPECT_EQ(position.y, 22);
}

TEST_F(WindowLookup, PropertyListWithoutDictionaryCountsAsMissingSoThatTheKeyItselfIsCompared) {
    strncpy(DriverInspector::Language(*driver), "de", 31);
    std::ofstream(Folder() / "de.plist") << "<plist><array><string>Farben</string></array></plist>";
    ASSERT_TRUE(Find({Candidate("Final Cut")}));
    EXPECT_EQ(position.y, 22);
}

TEST_F(WindowLookup, TargetDoesNotBecomeTheMainWindow) {
    ASSERT_TRUE(Find({Candidate("Farben")}));
    EXPECT_EQ((*desktop).Log().LastNumber(), 0u) << "nothing was set";
}

TEST_F(WindowLookup, TargetIsFoundByItsTranslatedTitle) {
    Translate("de", "<key>color</key><string>Farben</string>");
    ASSERT_TRUE(Find({Candidate("color")}));
    EXPECT_EQ(index, 0u);
    EXPECT_EQ(position.x, 500);
}

TEST_F(WindowLookup, KeyWithoutTranslationNeverMatchesEvenIfItAppearsInATitle) {
    Translate("de", "<key>color</key><string>Farben</string>");
    EXPECT_FALSE(Find({Candidate("Final Cut Pro")}));
    EXPECT_EQ(index, 99u) << "the caller's index is left alone when no window matches";
}

TEST_F(WindowLookup, TranslationThatIsNoTextNeverMatches) {
    Translate("de", "<key>color</key><integer>7</integer>");
    EXPECT_FALSE(Find({Candidate("color")}));
}

TEST_F(WindowLookup, FirstWindowThatMatchesAnyCandidateWinsOverTheCandidatesOrder) {
    // "Event Viewer" comes first in the window list, although its candidate comes last.
    ASSERT_TRUE(Find({Candidate("Farben"), Candidate("Final Cut"), Candidate("Viewer")}));
    EXPECT_EQ(index, 2u);
    EXPECT_EQ(position.x, 10);
}

TEST_F(WindowLookup, TwoCandidatesThatMatchOneWindowReportTheLowerIndex) {
    ASSERT_TRUE(Find({Candidate("Nowhere"), Candidate("Viewer"), Candidate("Event")}));
    EXPECT_EQ(index, 1u);
}

TEST_F(WindowLookup, EmptyTargetListNeverMatchesThoughTitlesAreRead) {
    const unsigned long before = desktop_link::ExchangeCount();
    EXPECT_FALSE(driver->GetPosAndSizeForTargetWindow(nullptr, 0, index, position, size));
    // The window list, and one title for each window.
    EXPECT_EQ(desktop_link::ExchangeCount() - before, 4u);
}

TEST_F(WindowLookup, SubWindowIsLookedUpAmongAllWindowsByItsTranslatedTitle) {
    Translate("de",
              "<key>main</key><string>Final Cut</string><key>sub</key><string>Viewer</string>");
    ASSERT_TRUE(Find({Candidate("main", "sub")}));
    EXPECT_EQ(index, 0u);
    EXPECT_EQ(position.x, 10) << "the frame of the sub-window";
}

TEST_F(WindowLookup, AbsentSubWindowYieldsFalseAlthoughACandidateMatched) {
    Translate("de",
              "<key>main</key><string>Final Cut</string><key>sub</key><string>Nowhere</string>");
    EXPECT_FALSE(Find({Candidate("main", "sub")}));
    EXPECT_EQ(index, 0u) << "the index stays set to the matched candidate";
    EXPECT_EQ(position.x, -1);
}

TEST_F(WindowLookup, SubWindowWithoutTranslationYieldsFalse) {
    Translate("de", "<key>main</key><string>Final Cut</string>");
    EXPECT_FALSE(Find({Candidate("main", "Viewer")}));
}

TEST_F(WindowLookup, LanguageTagOfSixteenCharactersOrMoreCountsWithItsFirstSixteen) {
    Translate("abcdefghijklmnop", "<key>color</key><string>Farben</string>");
    strncpy(DriverInspector::Language(*driver), "abcdefghijklmnopqrstu", 31);
    EXPECT_TRUE(Find({Candidate("color")}));
}

TEST_F(OtherWindows, OneUnreadableTitleEndsTheTargetSearchEvenIfALaterWindowWouldMatch) {
    Use(R"([{ "AXRole": "AXWindow", "AXTitle": {"error": -25204} },
            { "AXRole": "AXWindow", "AXTitle": "Viewer", "AXPosition": [1, 2], "AXSize": [3, 4] }])");
    EXPECT_FALSE(Find({Candidate("Viewer")}));
}

TEST_F(OtherWindows, UnreadableTitleAfterTheMatchIsNeverRead) {
    Use(R"([{ "AXRole": "AXWindow", "AXTitle": "Viewer", "AXPosition": [1, 2], "AXSize": [3, 4] },
            { "AXRole": "AXWindow", "AXTitle": {"error": -25204} }])");
    EXPECT_TRUE(Find({Candidate("Viewer")}));
}

TEST_F(OtherWindows, UnreadableFrameOfTheTargetKeepsTheIndexAndYieldsFalse) {
    Use(R"([{ "AXRole": "AXWindow", "AXTitle": "Viewer", "AXPosition": [1, 2] }])");
    EXPECT_FALSE(Find({Candidate("Nowhere"), Candidate("Viewer")}));
    EXPECT_EQ(index, 1u);
}

TEST_F(WindowLookup, TargetViewAnswersNullBeyondItsCount) {
    VEK_Driver_TargetWindowInfo infos[2] = {Candidate("a"), Candidate("b")};
    VEK_Driver_TargetWindowInfoArray view(infos, 2);
    EXPECT_EQ(view.TargetAt(0), infos);
    EXPECT_EQ(view.TargetAt(1), infos + 1);
    EXPECT_EQ(view.TargetAt(2), nullptr);
}

TEST_F(WindowLookup, SignatureFromAProcessSerialNumberIsAlwaysZero) {
    ProcessSerialNumber number = {0, 501};
    EXPECT_EQ(driver->GetSigFromPSN(&number), 0u);
    EXPECT_EQ(driver->GetSigFromPSN(nullptr), 0u);
}

TEST_F(WindowLookup, LookupsLeaveNoObjectBehindWithAndWithoutDictionary) {
    const auto lookUp = [this] {
        std::string name = "Final Cut Pro";
        driver->GetPosAndSizeForWindowName(name, false, position, size);
        Find({Candidate("Nowhere"), Candidate("color", "sub"), Candidate("Final Cut")});
    };
    EXPECT_EQ(platform_testing::LeftOverBy(lookUp), "");
    Translate("de", "<key>color</key><string>Farben</string><key>sub</key><string>View</string>");
    EXPECT_EQ(platform_testing::LeftOverBy(lookUp), "");
}

}  // namespace
