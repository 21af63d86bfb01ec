// The layer's NSLog, in place of GNUstep's.
#import <Foundation/Foundation.h>

#include <gtest/gtest.h>

#include "platform/Testing/LiveObjects.h"

namespace {

TEST(NSLogOfTheLayer, LeavesNoObjectBehind) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(platform_testing::LeftOverBy([] { NSLog(@"a line of %@ and %d", @"text", 4711); }),
              "");
    EXPECT_NE(testing::internal::GetCapturedStderr().find("a line of text and 4711"),
              std::string::npos);
}

}  // namespace
