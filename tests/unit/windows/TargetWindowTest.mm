// The choice of a target window among candidates.

#include <cstdint>
#include <type_traits>

#include "tests/unit/windows/WindowLookupFixture.h"

namespace {

TEST_F(WindowLookup, WithoutDictionaryTheKeyItselfIsCompared) {
    ASSERT_TRUE(Find({Candidate("Nowhere"), Candidate("Final Cut")}));
    EXPECT_EQ(index, 1u);
    EXPECT_EQ(position.y, 22);
}

TEST_F(WindowLookup, PropertyListWithoutDictionaryCountsAsMissingSoThatTheKeyItselfIsCompared) {
    SetLanguage("de");
    home.WriteTranslations("de", "<plist><array><string>Farben</string></array></plist>");
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

TEST_F(WindowLookup, TranslationsAreReadAnewByEveryLookup) {
    Translate("de", "<key>color</key><string>Farben</string>");
    ASSERT_TRUE(Find({Candidate("color")}));
    EXPECT_EQ(position.x, 500);
    Translate("de", "<key>color</key><string>Viewer</string>");
    ASSERT_TRUE(Find({Candidate("color")}));
    EXPECT_EQ(position.x, 10);
    Translate("fr", "<key>color</key><string>Nowhere</string>");
    EXPECT_FALSE(Find({Candidate("color")}));
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
    SetLanguage("abcdefghijklmnopqrstu");
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

// --- the index alone -----------------------------------------------------------------------------

TEST_F(WindowLookup, IndexOfATitleThatMatchesNoCandidateIsSetToZero) {
    VEK_Driver_TargetWindowInfo targets[] = {Candidate("Nowhere"), Candidate("Viewer")};
    EXPECT_FALSE(driver->GetTargetIndexForWindow(@"Final Cut Pro", targets, 2, &index));
    EXPECT_EQ(index, 0u);
    index = 99;
    EXPECT_FALSE(driver->GetTargetIndexForWindow(@"Final Cut Pro", nullptr, 0, &index));
    EXPECT_EQ(index, 0u);
}

TEST_F(WindowLookup, IndexOfATitleIsThatOfTheFirstCandidateWithinTheCount) {
    VEK_Driver_TargetWindowInfo targets[] = {Candidate("Nowhere"), Candidate("Cut"),
                                             Candidate("Final")};
    ASSERT_TRUE(driver->GetTargetIndexForWindow(@"Final Cut Pro", targets, 3, &index));
    EXPECT_EQ(index, 1u);
    EXPECT_FALSE(driver->GetTargetIndexForWindow(@"Final Cut Pro", targets, 1, &index));
}

// --- the encoding of names -----------------------------------------------------------------------

TEST_F(WindowLookup, CandidateNamesAreInTheSystemEncodingWhichIsMacRoman) {
    Translate("de",
              "<key>caf\u00e9</key><string>Final</string><key>caf\u00c3\u00a9</key><string>Event"
              "</string>");
    ASSERT_TRUE(Find({Candidate("caf\x8E")}));
    EXPECT_EQ(position.y, 22);
    EXPECT_FALSE(Find({Candidate("caf\u00e9")})) << "two characters, and not those of the bytes";
    EXPECT_FALSE(Find({Candidate("caf\xE9")}));
}

TEST_F(WindowLookup, CandidateWhoseNameIsNoTextInTheSystemEncodingIsSkipped) {
    Translate("de",
              "<key>caf\u00e9</key><string>Viewer</string><key>x</key><string>Final</string>");
    FrameworkAnswers::Current().systemEncoding = kCFStringEncodingUTF8;
    ASSERT_TRUE(Find({Candidate("caf\x8E"), Candidate("x")}));
    EXPECT_EQ(index, 1u);
    ASSERT_TRUE(Find({Candidate("caf\u00e9")})) << "the encoding is asked for";
    EXPECT_FALSE(Find({Candidate("x", "caf\x8E")}));
}

TEST_F(WindowLookup, SubWindowNamesAreInTheSystemEncodingToo) {
    Translate("de",
              "<key>main</key><string>Final Cut</string><key>\u00a9</key><string>Viewer</string>");
    ASSERT_TRUE(Find({Candidate("main", "\xA9")}));
    EXPECT_EQ(position.x, 10);
    EXPECT_FALSE(Find({Candidate("main", "\u00a9")}));
}

TEST_F(WindowLookup, SubWindowIsIgnoredWithoutItsFlag) {
    VEK_Driver_TargetWindowInfo target = Candidate("Final Cut", "Viewer");
    target.hasSubWindow = false;
    ASSERT_TRUE(Find({target}));
    EXPECT_EQ(position.y, 22);
}

TEST_F(WindowLookup, TargetViewAnswersNullBeyondItsCount) {
    VEK_Driver_TargetWindowInfo infos[2] = {Candidate("a"), Candidate("b")};
    VEK_Driver_TargetWindowInfoArray view(infos, 2);
    EXPECT_EQ(view.TargetAt(0), infos);
    EXPECT_EQ(view.TargetAt(1), infos + 1);
    EXPECT_EQ(view.TargetAt(2), nullptr);
    EXPECT_EQ(VEK_Driver_TargetWindowInfoArray(infos, 0).TargetAt(0), nullptr);
}

TEST_F(WindowLookup, TargetViewIsPolymorphicAndDoesNothingToTheRecordsWhenItEnds) {
    EXPECT_TRUE(std::has_virtual_destructor_v<VEK_Driver_TargetWindowInfoArray>);
    VEK_Driver_TargetWindowInfo info = Candidate("kept");
    delete new VEK_Driver_TargetWindowInfoArray(&info, 1);
    EXPECT_STREQ(info.windowName, "kept");
}

TEST(TargetRecord, HoldsNamesOf256BytesAnd1024UnitsWithTheirLengthsAndWhatItCarries) {
    VEK_Driver_TargetWindowInfo info = {};
    EXPECT_EQ(sizeof info.windowName, 256u);
    EXPECT_EQ(sizeof info.windowNameUnicode, 1024 * sizeof(UniChar));
    EXPECT_EQ(sizeof info.subWindowName, 256u);
    EXPECT_EQ(sizeof info.subWindowNameUnicode, 1024 * sizeof(UniChar));
    info.windowNameLength = info.subWindowNameLength = ~0ull;
    EXPECT_EQ(info.windowNameLength, UINT64_MAX);
    EXPECT_EQ(info.subWindowNameLength, UINT64_MAX);
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
