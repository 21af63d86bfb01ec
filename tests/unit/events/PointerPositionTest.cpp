// The pointer's position in global display coordinates, origin at the top left of the main screen,
// from what AppKit counts from the bottom left.
#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "platform/Testing/LiveObjects.h"
#include "platform/Variants/Variants.h"
#include "tests/support/ScriptedTransport.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TestDriver.h"

namespace {

using desktop_link::Operation;
using desktop_link::Point;
using desktop_link::Rect;
using desktop_link::Value;

class PointerPosition : public testing::Test {
  protected:
    // The pointer in AppKit's coordinates: `x` from the left, `up` from the bottom of a screen that
    // is as high as the main one.
    void PutPointer(double x, double up) {
        pointer_ = {x, screens_.empty() ? -up : screens_.front().size.height - up};
    }

    CGPoint Position() {
        CGPoint position = CGPointMake(-1234, -1234);
        driver_->GetGlobalMouse(&position);
        return position;
    }

    std::vector<Rect> screens_;  // the main one first

  private:
    std::optional<desktop_link::Reply> Answer(const desktop_link::Request& request) const {
        desktop_link::Reply reply;
        if (request.operation == Operation::screens) {
            for (const Rect& screen : screens_) {
                reply.values.push_back(Value{screen});
            }
        } else if (request.operation == Operation::pointerLocation) {
            reply.values.push_back(Value{pointer_});
            if (!screens_.empty()) {
                reply.values.push_back(Value{screens_.front()});
            }
        }
        return reply;
    }

    Point pointer_;
    platform_testing::AutoreleasePool pool_;
    test_support::SessionFixture session_;
    test_support::ScriptedTransport desktop_{
        [this](const desktop_link::Request& request) { return Answer(request); }};
    test_support::TestDriver driver_;
};

TEST_F(PointerPosition, At100And0OnAMainScreen900HighIs100And900) {
    screens_ = {{{0, 0}, {1440, 900}}};
    PutPointer(100, 0);
    EXPECT_EQ(Position().x, 100);
    EXPECT_EQ(Position().y, 900);
}

TEST_F(PointerPosition, AtTheTopIsZero) {
    screens_ = {{{0, 0}, {1440, 900}}};
    PutPointer(0, 900);
    EXPECT_EQ(Position().x, 0);
    EXPECT_EQ(Position().y, 0);
}

TEST_F(PointerPosition, KeepsItsFractions) {
    screens_ = {{{0, 0}, {1440, 900}}};
    PutPointer(0.25, 899.5);
    EXPECT_EQ(Position().x, 0.25);
    EXPECT_EQ(Position().y, 0.5);
}

TEST_F(PointerPosition, OnAnotherScreenIsRelativeToTheMainOne) {
    screens_ = {{{0, 0}, {1440, 900}}, {{-800, 900}, {800, 600}}};
    PutPointer(-800, -600);
    EXPECT_EQ(Position().x, -800);
    EXPECT_EQ(Position().y, 1500);
}

TEST_F(PointerPosition, OnlyTheHeightOfTheMainScreenCountsAndNotItsOrigin) {
    screens_ = {{{300, 50}, {1440, 900}}};
    PutPointer(400, 250);
    EXPECT_EQ(Position().x, 400);
    EXPECT_EQ(Position().y, 650);
}

TEST_F(PointerPosition, OnAScreenOfTheKeyWindowOnlyThatScreensHeightEntersAndNotItsOrigin) {
    const platform_testing::UnderVariant elsewhere(
        platform_testing::Variant::mainScreenElsewhere);  // 720 high, its bottom at 240
    screens_ = {{{0, 0}, {1440, 900}}};
    PutPointer(100, 40);
    EXPECT_EQ(Position().x, 100);
    EXPECT_EQ(Position().y, 680);
}

TEST_F(PointerPosition, WithoutMainScreenThoughThereAreScreensCountsFromAHeightOfZero) {
    const platform_testing::UnderVariant none(platform_testing::Variant::noMainScreen);
    screens_ = {{{0, 0}, {1440, 900}}};
    PutPointer(100, 40);
    EXPECT_EQ(Position().y, -40);
}

TEST_F(PointerPosition, WithoutMainScreenCountsFromAHeightOfZero) {
    PutPointer(100, 40);
    EXPECT_EQ(Position().x, 100);
    EXPECT_EQ(Position().y, -40);
}

}  // namespace
