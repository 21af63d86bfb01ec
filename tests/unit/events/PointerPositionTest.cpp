// The pointer's position in global display coordinates, origin at the top left of the main screen,
// from what AppKit counts from the bottom left.
#include <gtest/gtest.h>

#include <string>

#include "platform/Testing/LiveObjects.h"
#include "platform/Variants/Variants.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TestDriver.h"

namespace {

constexpr char kScreen[] = R"([{"frame": [0, 0, 1440, 900]}])";

class PointerPosition : public testing::Test {
  protected:
    // Screens as a scene lists them, the main one first.
    void ShowScreens(const std::string& frames, double heightOfTheMainOne) {
        desktop_.Load(R"({"screens": )" + frames + "}");
        height_ = heightOfTheMainOne;
    }

    // The pointer in AppKit's coordinates: `x` from the left, `up` from the bottom of a screen that
    // is as high as the main one.
    void PutPointer(double x, double up) {
        desktop_.Run(R"({"command": "pointer", "position": [)" + std::to_string(x) + ", " +
                     std::to_string(height_ - up) + "]}");
    }

    CGPoint Position() {
        CGPoint position = CGPointMake(-1234, -1234);
        driver_->GetGlobalMouse(&position);
        return position;
    }

  private:
    platform_testing::AutoreleasePool pool_;
    test_support::SessionFixture session_;
    test_support::ScriptedDesktop desktop_;
    test_support::TestDriver driver_;
    double height_ = 0;
};

TEST_F(PointerPosition, At100And0OnAMainScreen900HighIs100And900) {
    ShowScreens(kScreen, 900);
    PutPointer(100, 0);
    EXPECT_EQ(Position().x, 100);
    EXPECT_EQ(Position().y, 900);
}

TEST_F(PointerPosition, AtTheTopIsZero) {
    ShowScreens(kScreen, 900);
    PutPointer(0, 900);
    EXPECT_EQ(Position().x, 0);
    EXPECT_EQ(Position().y, 0);
}

TEST_F(PointerPosition, KeepsItsFractions) {
    ShowScreens(kScreen, 900);
    PutPointer(0.25, 899.5);
    EXPECT_EQ(Position().x, 0.25);
    EXPECT_EQ(Position().y, 0.5);
}

TEST_F(PointerPosition, OnAnotherScreenIsRelativeToTheMainOne) {
    ShowScreens(R"([{"frame": [0, 0, 1440, 900]}, {"frame": [-800, 900, 800, 600]}])", 900);
    PutPointer(-800, -600);
    EXPECT_EQ(Position().x, -800);
    EXPECT_EQ(Position().y, 1500);
}

TEST_F(PointerPosition, OnlyTheHeightOfTheMainScreenCountsAndNotItsOrigin) {
    ShowScreens(R"([{"frame": [300, 50, 1440, 900]}])", 900);
    PutPointer(400, 250);
    EXPECT_EQ(Position().x, 400);
    EXPECT_EQ(Position().y, 650);
}

TEST_F(PointerPosition, OnAScreenOfTheKeyWindowOnlyThatScreensHeightEntersAndNotItsOrigin) {
    const platform_testing::UnderVariant elsewhere(
        platform_testing::Variant::mainScreenElsewhere);  // 720 high, its bottom at 240
    ShowScreens(kScreen, 900);
    PutPointer(100, 40);
    EXPECT_EQ(Position().x, 100);
    EXPECT_EQ(Position().y, 680);
}

TEST_F(PointerPosition, WithoutMainScreenThoughThereAreScreensCountsFromAHeightOfZero) {
    const platform_testing::UnderVariant none(platform_testing::Variant::noMainScreen);
    ShowScreens(kScreen, 900);
    PutPointer(100, 40);
    EXPECT_EQ(Position().y, -40);
}

TEST_F(PointerPosition, WithoutMainScreenCountsFromAHeightOfZero) {
    ShowScreens("[]", 0);
    PutPointer(100, 40);
    EXPECT_EQ(Position().x, 100);
    EXPECT_EQ(Position().y, -40);
}

}  // namespace
