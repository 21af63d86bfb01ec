// The function through which GNUstep reads bytes, where the layer takes its place.
#import <Foundation/Foundation.h>

#include <GNUstepBase/Unicode.h>
#include <gtest/gtest.h>

namespace {

TEST(MacRomanText, HasTheCharactersThatGNUstepHasWrong) {
    const unsigned char bytes[] = {'a', 0xC6, 0xF0, 0xC4};
    NSString* text = [[NSString alloc] initWithBytes:bytes
                                              length:sizeof bytes
                                            encoding:NSMacOSRomanStringEncoding];
    ASSERT_EQ([text length], 4U);
    EXPECT_EQ([text characterAtIndex:0], u'a');
    EXPECT_EQ([text characterAtIndex:1], u'\u2206');
    EXPECT_EQ([text characterAtIndex:2], u'\uF8FF');
    EXPECT_EQ([text characterAtIndex:3], u'\u0192');
    [text release];
}

TEST(MacRomanText, IsMeasuredWithoutBeingWritten) {
    const unsigned char bytes[] = {'a', 0xC6, 0xF0};
    unsigned int length = 0;
    EXPECT_TRUE(
        GSToUnicode(nullptr, &length, bytes, sizeof bytes, NSMacOSRomanStringEncoding, nullptr, 0));
    EXPECT_EQ(length, sizeof bytes);
}

}  // namespace
