// The comparison of a window's title with a name: literal, by whichever kind of string.

#include "tests/unit/windows/WindowLookupFixture.h"

namespace {

constexpr bool kExact = false;
constexpr bool kPartial = true;

const char* const kComposed = "Caf\u00e9";
const char* const kDecomposed = "Cafe\u0301";

// A string of each class that Foundation makes for such a text.
std::vector<NSString*> EveryKindOf(const char* text) {
    NSString* plain = [NSString stringWithUTF8String:text];
    return {plain, [NSMutableString stringWithString:plain],
            (NSString*)__CFStringMakeConstantString(text),
            [[plain stringByAppendingString:@"x"] substringToIndex:[plain length]],
            [NSString stringWithFormat:@"%@", plain]};
}

void ExpectMatch(CVEK_UserSpaceDriver& driver, const char* title, const char* name, bool partial,
                 bool expected) {
    for (NSString* titleString : EveryKindOf(title)) {
        for (NSString* nameString : EveryKindOf(name)) {
            EXPECT_EQ(driver.MatchWindowTitle(titleString, nameString, partial), expected)
                << title << " and " << name << ", partial " << partial << ", "
                << [NSStringFromClass([titleString class]) UTF8String] << " and "
                << [NSStringFromClass([nameString class]) UTF8String];
        }
    }
}

using TitleMatch = WindowLookup;

TEST_F(TitleMatch, ExactTakesTheSameTextOnly) {
    ExpectMatch(*driver, "Final Cut Pro", "Final Cut Pro", kExact, true);
    ExpectMatch(*driver, "Final Cut Pro", "Final Cut pro", kExact, false);
    ExpectMatch(*driver, "Final Cut Pro", "Final Cut", kExact, false);
    ExpectMatch(*driver, "Final Cut", "Final Cut Pro", kExact, false);
    ExpectMatch(*driver, kComposed, kComposed, kExact, true);
    ExpectMatch(*driver, kDecomposed, kDecomposed, kExact, true);
    ExpectMatch(*driver, "", "", kExact, true);
}

TEST_F(TitleMatch, PartialTakesTheTextAnywhereInTheTitle) {
    ExpectMatch(*driver, "Final Cut Pro", "Cut", kPartial, true);
    ExpectMatch(*driver, "Final Cut Pro", "Final Cut Pro", kPartial, true);
    ExpectMatch(*driver, "Final Cut Pro", "cut", kPartial, false);
    ExpectMatch(*driver, "Cut", "Final Cut Pro", kPartial, false);
    ExpectMatch(*driver, "Un Caf\u00e9 noir", kComposed, kPartial, true);
    ExpectMatch(*driver, "Un Cafe\u0301 noir", kDecomposed, kPartial, true);
}

TEST_F(TitleMatch, PartialWithAnEmptyNameNeverMatches) {
    ExpectMatch(*driver, "Final Cut Pro", "", kPartial, false);
    ExpectMatch(*driver, "", "", kPartial, false);
}

TEST_F(TitleMatch, ComposedAndDecomposedCharactersDiffer) {
    for (const bool partial : {kExact, kPartial}) {
        ExpectMatch(*driver, kDecomposed, kComposed, partial, false);
        ExpectMatch(*driver, kComposed, kDecomposed, partial, false);
    }
    ExpectMatch(*driver, "Un Cafe\u0301 noir", kComposed, kPartial, false);
    ExpectMatch(*driver, "Un Caf\u00e9 noir", kDecomposed, kPartial, false);
}

TEST_F(TitleMatch, PartialFindsALetterWhoseAccentFollowsIt) {
    ExpectMatch(*driver, kDecomposed, "Cafe", kPartial, true);
    ExpectMatch(*driver, kComposed, "Cafe", kPartial, false);
}

TEST_F(TitleMatch, NilMatchesNothingAndIsHarmless) {
    for (const bool partial : {kExact, kPartial}) {
        EXPECT_FALSE(driver->MatchWindowTitle(nil, @"Final Cut Pro", partial));
        EXPECT_FALSE(driver->MatchWindowTitle(@"Final Cut Pro", nil, partial));
        EXPECT_FALSE(driver->MatchWindowTitle(nil, nil, partial));
    }
}

class DecomposedTitle : public OtherWindows {
  protected:
    DecomposedTitle() {
        Use(std::string(R"([{ "AXRole": "AXWindow", "AXTitle": ")") + kDecomposed +
            R"(", "AXPosition": [1, 2], "AXSize": [3, 4] }])");
    }
};

TEST_F(DecomposedTitle, IsNotFoundByTheComposedNameExactOrPartial) {
    std::string composed = kComposed;
    std::string decomposed = kDecomposed;
    for (const bool partial : {kExact, kPartial}) {
        EXPECT_FALSE(driver->GetPosAndSizeForWindowName(composed, partial, position, size));
        EXPECT_TRUE(driver->GetPosAndSizeForWindowName(decomposed, partial, position, size));
    }
}

TEST_F(DecomposedTitle, IsNotTheTargetOfAComposedTranslation) {
    Translate("de", std::string("<key>composed</key><string>") + kComposed +
                        "</string><key>decomposed</key><string>" + kDecomposed + "</string>");
    EXPECT_FALSE(Find({Candidate("composed")}));
    EXPECT_TRUE(Find({Candidate("composed"), Candidate("decomposed")}));
    EXPECT_EQ(index, 1u);
}

// --- virtual -------------------------------------------------------------------------------------

// Takes the window "Event Viewer" for whatever is looked for, and no other.
class DriverWithAComparisonOfItsOwn : public CVEK_UserSpaceDriver {
  public:
    bool MatchWindowTitle(NSString* title, NSString* name, bool partial) override {
        asked.push_back({[name UTF8String], partial});
        return [title isEqualToString:@"Event Viewer"];
    }

    struct Question {
        std::string name;
        bool partial;
        bool operator==(const Question&) const = default;
    };
    std::vector<Question> asked;
};

class OverriddenTitleMatch : public testing::Test {
  protected:
    using Question = DriverWithAComparisonOfItsOwn::Question;

    OverriddenTitleMatch() { ObserveAnew(); }

    platform_testing::AutoreleasePool pool_;
    test_support::HomeFolder home_;  // without translations: keys are titles
    test_support::SessionFixture session_;
    test_support::ScriptedDesktop desktop_{SceneOfWindows(kWindows)};
    test_support::TestDriverOf<DriverWithAComparisonOfItsOwn> driver_;
    CGPoint position_ = {-1, -1};
    CGSize size_ = {-1, -1};
};

TEST_F(OverriddenTitleMatch, IsWhatLookupsByNameUse) {
    for (const bool partial : {kExact, kPartial}) {
        driver_->asked.clear();
        std::string name = "Anything";
        ASSERT_TRUE(driver_->GetPosAndSizeForWindowName(name, partial, position_, size_));
        EXPECT_EQ(position_.x, 10);
        EXPECT_THAT(driver_->asked, testing::ElementsAre(Question{"Anything", partial}));
    }
}

TEST_F(OverriddenTitleMatch, IsWhatTheChoiceAmongTargetsUsesAlwaysPartial) {
    VEK_Driver_TargetWindowInfo targets[] = {Candidate("Final Cut Pro", "Farben")};
    unsigned index = 99;
    ASSERT_TRUE(driver_->GetPosAndSizeForTargetWindow(targets, 1, index, position_, size_));
    EXPECT_EQ(index, 0u);
    EXPECT_EQ(position_.x, 10);
    EXPECT_THAT(driver_->asked,
                testing::ElementsAre(Question{"Final Cut Pro", true}, Question{"Farben", true}));
}

}  // namespace
