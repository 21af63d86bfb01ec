// Windows found by title, and their frames.

#include "platform/Testing/LogCapture.h"
#include "tests/unit/windows/WindowLookupFixture.h"
#include "windows/WindowAttributes.h"

namespace {

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
    EXPECT_THAT(log.ConsoleTexts(),
                testing::ElementsAre("CopyApplicationWindowList",
                                     "CopyApplicationWindowList tag retain count = 1",
                                     "CopyApplicationWindowList tag AXUIElementCopyAttributeValue "
                                     "err = ffff9d8c\n"));
    EXPECT_FALSE(Find({Candidate("a")}));
}

TEST_F(WindowLookup, WindowListSaysOnlyWhenAskedWhatItDoes) {
    const platform_testing::LogCapture log;
    EXPECT_EQ([driver->CopyApplicationWindowList(false, @"tag") count], 3u);
    EXPECT_THAT(log.Lines(), testing::IsEmpty());
    EXPECT_EQ([driver->CopyApplicationWindowList(true, @"tag") count], 3u);
    EXPECT_THAT(log.ConsoleTexts(),
                testing::ElementsAre("CopyApplicationWindowList",
                                     "CopyApplicationWindowList tag retain count = 1"));
}

TEST_F(OtherWindows, FailingWindowListSaysNothingUnlessAsked) {
    Use(R"({"error": -25204})");
    const platform_testing::LogCapture log;
    EXPECT_EQ(driver->CopyApplicationWindowList(false, @"tag"), nil);
    EXPECT_THAT(log.Lines(), testing::IsEmpty());
}

TEST_F(WindowLookup, WithoutAnElementForTheApplicationThereIsNoWindowList) {
    FrameworkAnswers::Current().applicationElements = false;
    const platform_testing::LogCapture log;
    const unsigned long before = desktop_link::ExchangeCount();
    EXPECT_EQ(driver->CopyApplicationWindowList(true, @"tag"), nil);
    EXPECT_THAT(log.ConsoleTexts(), testing::ElementsAre("CopyApplicationWindowList"));
    std::string name = "Final Cut Pro";
    EXPECT_FALSE(driver->GetPosAndSizeForWindowName(name, false, position, size));
    EXPECT_FALSE(Find({Candidate("Final Cut Pro")}));
    EXPECT_EQ(desktop_link::ExchangeCount(), before) << "nothing is asked";
}

TEST_F(WindowLookup, EntryOfAWindowListThatIsNoElementHasNoTitle) {
    EXPECT_EQ(CopyWindowTitle(CFSTR("Final Cut Pro")), nullptr);
    EXPECT_EQ(CopyWindowTitle(kCFNull), nullptr);
}

TEST_F(OtherWindows, WhatIsNoListIsNoWindowList) {
    Use(R"("three windows")");
    EXPECT_EQ(driver->CopyApplicationWindowList(false, @""), nil);
    EXPECT_FALSE(Find({Candidate("a")}));
}

TEST_F(OtherWindows, TitleThatIsNoTextIsSkippedByNameAndEndsTheTargetSearch) {
    Use(R"([{ "AXRole": "AXWindow", "AXTitle": 7 },
            { "AXRole": "AXWindow", "AXTitle": "Viewer", "AXPosition": [1, 2], "AXSize": [3, 4] }])");
    std::string name = "Viewer";
    EXPECT_TRUE(driver->GetPosAndSizeForWindowName(name, false, position, size));
    EXPECT_FALSE(Find({Candidate("Viewer")}));
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
    desktop.Run(R"({"command": "misbehave", "element": "/0",
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

TEST_F(OtherWindows, FrameThatIsTextWritesNeitherOutput) {
    Use(R"([{ "AXRole": "AXWindow", "AXTitle": "Viewer", "AXPosition": [1, 2], "AXSize": "3x4" },
            { "AXRole": "AXWindow", "AXTitle": "Other", "AXPosition": "1, 2", "AXSize": [3, 4] }])");
    for (std::string name : {"Viewer", "Other"}) {
        EXPECT_FALSE(driver->GetPosAndSizeForWindowName(name, false, position, size));
        EXPECT_EQ(position.x, -1);
        EXPECT_EQ(size.width, -1);
    }
}

TEST_F(OtherWindows, SizeOfAnotherTypeWritesNeitherOutput) {
    Use(R"([{ "AXRole": "AXWindow", "AXTitle": "Viewer", "AXPosition": [1, 2],
              "AXSize": {"point": [3, 4]} }])");
    std::string name = "Viewer";
    EXPECT_FALSE(driver->GetPosAndSizeForWindowName(name, false, position, size));
    EXPECT_EQ(position.x, -1);
    EXPECT_EQ(size.width, -1);
}

TEST_F(OtherWindows, UnreadablePositionWritesNeitherOutputAndTheSizeIsNotAskedFor) {
    Use(R"([{ "AXRole": "AXWindow", "AXTitle": "Viewer", "AXPosition": {"error": -25212},
              "AXSize": [3, 4] }])");
    AXUIElementRef window = driver->GetWindowElementWithTitle(@"Viewer", false);
    const unsigned long before = desktop_link::ExchangeCount();
    EXPECT_FALSE(driver->GetPosAndSizeForWindowElement(window, position, size));
    EXPECT_EQ(desktop_link::ExchangeCount() - before, 1u);
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

}  // namespace
