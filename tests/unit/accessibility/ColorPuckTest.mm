#import <Foundation/Foundation.h>

#include "platform/Testing/LogCapture.h"
#include "tests/unit/accessibility/DriverBesideEditor.h"

AXUIElementRef FindColorPuck(CVEK_UserSpaceDriver& driver, const std::string& identifier) {
    return driver.GetColorPuckWithID([NSString stringWithUTF8String:identifier.c_str()]);
}

namespace {

class ColorPuck : public DriverBesideEditor {
  protected:
    std::string Find(NSString* identifier = @"_NS:1") {
        return TitleOf(driver_->GetColorPuckWithID(identifier));
    }
    ElementReference Button(const std::string& title) {
        return Titled(editor_.Add("AXButton", "_NS:1"), title);
    }
    ElementReference Group(const std::vector<ElementReference>& children) {
        return editor_.Add("AXGroup", "", children);
    }
    ElementReference SplitGroup(const std::vector<ElementReference>& children) {
        return editor_.Add("AXSplitGroup", "", children);
    }
};

TEST_F(ColorPuck, IsAButtonInAGroupInASplitGroupOfAWindow) {
    editor_.ShowWindow({SplitGroup({Group({editor_.Add("AXButton"), Button("puck")})})});
    EXPECT_EQ(Find(), "puck");
}

TEST_F(ColorPuck, AButtonOneLevelDeeperIsNotFound) {
    editor_.ShowWindow({SplitGroup({Group({Group({Button("too deep")})})})});
    EXPECT_EQ(Find(), "(none)");
}

TEST_F(ColorPuck, AButtonDirectlyUnderASplitGroupIsNotFound) {
    editor_.ShowWindow({SplitGroup({Button("too shallow")})});
    EXPECT_EQ(Find(), "(none)");
}

TEST_F(ColorPuck, OnlyThePathOfTheseRolesCounts) {
    editor_.ShowWindow({Group({Group({Button("group in group")})}),
                        SplitGroup({SplitGroup({Button("split group in split group")})}),
                        SplitGroup({Group({Titled(editor_.Add("AXCheckBox", "_NS:1"), "box")})})});
    EXPECT_EQ(Find(), "(none)");
}

TEST_F(ColorPuck, TheEarlierWindowThenSplitGroupThenGroupThenPositionWins) {
    auto first = editor_.Add("AXWindow", "", {SplitGroup({Group({Button("earlier window")})})});
    auto second = editor_.Add("AXWindow", "", {SplitGroup({Group({Button("later window")})})});
    editor_.SetWindows({first, second});
    EXPECT_EQ(Find(), "earlier window");
    editor_.ShowWindow({SplitGroup({Group({Button("earlier split group")})}),
                        SplitGroup({Group({Button("later split group")})})});
    EXPECT_EQ(Find(), "earlier split group");
    editor_.ShowWindow({SplitGroup({Group({Button("earlier group")}), Group({Button("later")})})});
    EXPECT_EQ(Find(), "earlier group");
    editor_.ShowWindow({SplitGroup({Group({Button("earlier position"), Button("later")})})});
    EXPECT_EQ(Find(), "earlier position");
}

TEST_F(ColorPuck, ADifferentlyCasedIdentifierDoesNotMatch) {
    editor_.ShowWindow({SplitGroup({Group({Button("puck")})})});
    EXPECT_EQ(Find(@"_ns:1"), "(none)");
    EXPECT_EQ(Find(@"_NS:1 "), "(none)");
    EXPECT_EQ(Find(@""), "(none)");
    EXPECT_EQ(Find(nil), "(none)");
}

TEST_F(ColorPuck, WhatCannotBeReadIsPassedOver) {
    auto noRole = SplitGroup({Group({Button("without role")})});
    editor_.Unset(noRole, "AXRole");
    auto numberRole = SplitGroup({Group({Button("role a number")})});
    editor_.Set(numberRole, "AXRole", Number(1));
    auto noChildren = editor_.Add("AXSplitGroup");
    auto oddIdentifier = Button("identifier a number");
    editor_.Set(oddIdentifier, "AXIdentifier", Number(1));
    auto noIdentifier = editor_.Add("AXButton");
    auto window = editor_.ShowWindow({});
    editor_.Set(
        window, "AXChildren",
        List({Null(), Text("AXSplitGroup"), Value{noRole}, Value{numberRole}, Value{noChildren},
              Value{SplitGroup({Group({oddIdentifier, noIdentifier, Button("puck")})})}}));
    auto closed = editor_.Add("AXWindow");
    editor_.Fail(closed, kAXErrorInvalidUIElement);
    editor_.SetWindows({closed, window});
    EXPECT_EQ(Find(), "puck");
}

TEST_F(ColorPuck, RoleOfAnEarlierElementNeverStandsInForOneThatCannotBeRead) {
    auto noRole = SplitGroup({Group({Button("in what has no role")})});
    editor_.Unset(noRole, "AXRole");
    editor_.ShowWindow({SplitGroup({}), noRole});
    EXPECT_EQ(Find(), "(none)");
    auto noButton = Button("without role");
    editor_.Unset(noButton, "AXRole");
    editor_.ShowWindow({SplitGroup({Group({editor_.Add("AXButton", "_NS:2"), noButton})})});
    EXPECT_EQ(Find(), "(none)");
}

TEST_F(ColorPuck, WithoutWindowListThereIsNone) {
    editor_.Fail(editor_.Application(), kAXErrorCannotComplete);
    EXPECT_EQ(Find(), "(none)");
    test_support::SetFrontApplication({"com.apple.FinalCut", "10.4.6", -1});
    EXPECT_EQ(Find(), "(none)");
}

TEST_F(ColorPuck, NothingIsLoggedWhetherItIsFoundOrNot) {
    editor_.ShowWindow({SplitGroup({Group({Button("puck")})})});
    platform_testing::LogCapture log;
    EXPECT_EQ(Find(), "puck");
    EXPECT_EQ(Find(@"_NS:2"), "(none)");
    editor_.Fail(editor_.Application(), kAXErrorCannotComplete);
    EXPECT_EQ(Find(), "(none)");
    test_support::SetFrontApplication({"com.apple.FinalCut", "10.4.6", -1});
    EXPECT_EQ(Find(), "(none)");
    EXPECT_THAT(log.Lines(), testing::IsEmpty());
}

TEST_F(ColorPuck, IsBorrowedFromTheAutoreleasePool) {
    editor_.ShowWindow({SplitGroup({Group({Button("puck")})})});
    auto kept = Retained(driver_->GetColorPuckWithID(@"_NS:1"));
    DrainPool();
    ASSERT_TRUE(kept);
    EXPECT_EQ(CFGetRetainCount(kept.get()), 1);
}

}  // namespace
