// What the driver may rely on of NSString on either system.
#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <climits>
#include <string>

namespace {

NSString* FromUTF8(const char* text) {
    return [NSString stringWithUTF8String:text];
}

// A string of each class that Foundation makes for such a text.
std::vector<NSString*> EveryKindOf(const char* text) {
    NSString* plain = FromUTF8(text);
    return {plain, [NSMutableString stringWithString:plain],
            (NSString*)__CFStringMakeConstantString(text),
            [[plain stringByAppendingString:@"x"] substringToIndex:[plain length]],
            [NSString stringWithFormat:@"%@", plain]};
}

class StringBehaviour : public testing::Test {
  protected:
    StringBehaviour() : pool_([[NSAutoreleasePool alloc] init]) {}
    ~StringBehaviour() override { [pool_ drain]; }

  private:
    NSAutoreleasePool* pool_;
};

TEST_F(StringBehaviour, IntValueStaysAtTheLimitsOf32Bits) {
    for (NSString* text : EveryKindOf("99999999999")) {
        EXPECT_EQ([text intValue], INT_MAX);
    }
    for (NSString* text : EveryKindOf("-2147483649")) {
        EXPECT_EQ([text intValue], INT_MIN);
    }
    for (NSString* text : EveryKindOf("99999999999999999999999999999999999999")) {
        EXPECT_EQ([text intValue], INT_MAX);
    }
    for (NSString* text : EveryKindOf("  12abc")) {
        EXPECT_EQ([text intValue], 12);
    }
    for (NSString* text : EveryKindOf("none")) {
        EXPECT_EQ([text intValue], 0);
    }
}

TEST_F(StringBehaviour, GetCStringAnswersNoForACharacterThatTheEncodingLacks) {
    for (NSString* text : EveryKindOf("a\u65e5")) {
        char buffer[16] = {'x'};
        EXPECT_FALSE([text getCString:buffer
                            maxLength:sizeof buffer
                             encoding:NSMacOSRomanStringEncoding]);
        EXPECT_EQ([text cStringUsingEncoding:NSMacOSRomanStringEncoding], nullptr);
    }
}

TEST_F(StringBehaviour, GetCStringCountsTheTerminator) {
    for (NSString* text : EveryKindOf("1.0")) {
        char buffer[4];
        EXPECT_TRUE([text getCString:buffer
                           maxLength:4
                            encoding:[NSString defaultCStringEncoding]]);
        EXPECT_STREQ(buffer, "1.0");
        EXPECT_FALSE([text getCString:buffer
                            maxLength:3
                             encoding:[NSString defaultCStringEncoding]]);
    }
}

TEST_F(StringBehaviour, MutableStringsTakeOverTextOfEveryKind) {
    for (const char* text : {"a", "ab", "01:00:00:00", "Caf\u00e9", "a\u65e5"}) {
        for (NSString* other : EveryKindOf(text)) {
            for (const char* former : {"", "x", "a former text that is longer", "\u672c"}) {
                NSMutableString* string = [NSMutableString stringWithString:FromUTF8(former)];
                [string setString:other];
                EXPECT_STREQ([string UTF8String], text) << "in place of " << former;
                [string appendString:other];
                [string insertString:other atIndex:0];
                EXPECT_EQ([string UTF8String], std::string(text) + text + text);
            }
        }
    }
}

TEST_F(StringBehaviour, TextThatDoesNotFitIsCut) {
    for (NSString* text : EveryKindOf("1.0")) {
        char buffer[] = "xxxxx";
        EXPECT_FALSE([text getCString:buffer maxLength:3 encoding:NSMacOSRomanStringEncoding]);
        EXPECT_STREQ(buffer, "1.");
        EXPECT_EQ(buffer[3], 'x') << "nothing is written beyond the given size";
        EXPECT_FALSE([text getCString:buffer maxLength:0 encoding:NSMacOSRomanStringEncoding]);
        EXPECT_STREQ(buffer, "1.");
    }
}

TEST_F(StringBehaviour, GetCStringKnowsMacRoman) {
    for (NSString* text : EveryKindOf("Caf\u00e9 \uf8ff")) {
        char buffer[16];
        ASSERT_TRUE([text getCString:buffer
                           maxLength:sizeof buffer
                            encoding:NSMacOSRomanStringEncoding]);
        EXPECT_STREQ(buffer, "Caf\x8E \xF0");
    }
}

TEST_F(StringBehaviour, GetCStringKnowsWindowsLatin1AndUTF16) {
    for (NSString* text : EveryKindOf("\u20ac")) {
        char buffer[16];
        ASSERT_TRUE([text getCString:buffer
                           maxLength:sizeof buffer
                            encoding:NSWindowsCP1252StringEncoding]);
        EXPECT_STREQ(buffer, "\x80");
        ASSERT_TRUE([text getCString:buffer
                           maxLength:sizeof buffer
                            encoding:NSUnicodeStringEncoding]);
        EXPECT_STREQ(buffer, "\xAC\x20");
    }
}

TEST_F(StringBehaviour, GetCStringAnswersNoForAnEncodingThatIsNotProvided) {
    char buffer[16];
    EXPECT_FALSE([@"abc" getCString:buffer
                          maxLength:sizeof buffer
                           encoding:NSJapaneseEUCStringEncoding]);
}

TEST_F(StringBehaviour, UTF8StringIsNullForAnUnpairedSurrogate) {
    const UniChar units[] = {'a', 0xD83C};
    auto text = (NSString*)CFStringCreateWithCharacters(kCFAllocatorDefault, units, 2);
    EXPECT_EQ([text UTF8String], nullptr);
    [text release];
    for (NSString* valid : EveryKindOf("\U0001F3AC")) {
        EXPECT_STREQ([valid UTF8String], "\U0001F3AC");
    }
}

TEST_F(StringBehaviour, TheDefaultCStringEncodingIsMacRoman) {
    EXPECT_EQ([NSString defaultCStringEncoding], NSMacOSRomanStringEncoding);
}

constexpr NSStringCompareOptions kDefaultAndLiteral[] = {0, NSLiteralSearch};
constexpr auto kNotFound = static_cast<NSUInteger>(NSNotFound);

void ExpectRange(NSRange range, NSUInteger location, NSUInteger length) {
    EXPECT_EQ(range.location, location);
    EXPECT_EQ(range.length, length);
}

TEST_F(StringBehaviour, AnEmptyTextIsFoundNowhere) {
    for (NSString* text : EveryKindOf("abc")) {
        ExpectRange([text rangeOfString:@""], kNotFound, 0);
        ExpectRange([text rangeOfString:@"" options:NSLiteralSearch], kNotFound, 0);
    }
}

TEST_F(StringBehaviour, ToLookForNilRaisesAnException) {
    bool raised = false;
    @try {
        [@"abc" rangeOfString:(NSString*)nil];
    } @catch (NSException* exception) {
        raised = [[exception name] isEqualToString:NSInvalidArgumentException];
    }
    EXPECT_TRUE(raised);
}

TEST_F(StringBehaviour, SearchIsCaseSensitive) {
    for (NSString* text : EveryKindOf("Final Cut Pro - Color")) {
        for (const NSStringCompareOptions options : kDefaultAndLiteral) {
            ExpectRange([text rangeOfString:@"Color" options:options], 16, 5);
            ExpectRange([text rangeOfString:@"color" options:options], kNotFound, 0);
            ExpectRange([text rangeOfString:@"Colors" options:options], kNotFound, 0);
        }
    }
}

TEST_F(StringBehaviour, SearchFindsComposedAndDecomposedCharactersAlike) {
    for (NSString* text : EveryKindOf("x\u00e9y")) {
        ExpectRange([text rangeOfString:FromUTF8("e\u0301")], 1, 1);
        ExpectRange([text rangeOfString:FromUTF8("xe\u0301y")], 0, 3);
        ExpectRange([text rangeOfString:FromUTF8("\u00e9")], 1, 1);
    }
    for (NSString* text : EveryKindOf("xe\u0301y")) {
        ExpectRange([text rangeOfString:FromUTF8("\u00e9")], 1, 2);
        ExpectRange([text rangeOfString:FromUTF8("\u00e9y")], 1, 3);
    }
    for (NSString* text : EveryKindOf("a\u0323\u0301")) {
        ExpectRange([text rangeOfString:FromUTF8("a\u0301\u0323")], 0, 3);
    }
}

TEST_F(StringBehaviour, SearchFindsNoPartOfALetterWithItsMarks) {
    ExpectRange([FromUTF8("xe\u0301y") rangeOfString:@"e"], kNotFound, 0);
    ExpectRange([FromUTF8("\u00e9") rangeOfString:@"e"], kNotFound, 0);
    ExpectRange([FromUTF8("\u00e9") rangeOfString:FromUTF8("\u0301")], kNotFound, 0);
    ExpectRange([FromUTF8("xe\u0301ey") rangeOfString:@"e"], 3, 1);
    ExpectRange([FromUTF8("xe\u0301y") rangeOfString:FromUTF8("\u0301y")], 2, 2);
}

TEST_F(StringBehaviour, LiteralSearchTellsComposedAndDecomposedCharactersApart) {
    for (NSString* text : EveryKindOf("x\u00e9y")) {
        ExpectRange([text rangeOfString:FromUTF8("e\u0301") options:NSLiteralSearch], kNotFound, 0);
        ExpectRange([text rangeOfString:FromUTF8("\u00e9") options:NSLiteralSearch], 1, 1);
    }
    for (NSString* text : EveryKindOf("xe\u0301y")) {
        ExpectRange([text rangeOfString:FromUTF8("\u00e9") options:NSLiteralSearch], kNotFound, 0);
        ExpectRange([text rangeOfString:@"e" options:NSLiteralSearch], 1, 1);
    }
}

TEST_F(StringBehaviour, SearchAndComparisonIgnoreCaseWhenAskedTo) {
    for (NSString* text : EveryKindOf("Color")) {
        ExpectRange([text rangeOfString:@"LOR" options:NSCaseInsensitiveSearch], 2, 3);
        EXPECT_EQ([text compare:@"cOLOR" options:NSCaseInsensitiveSearch], NSOrderedSame);
    }
}

TEST_F(StringBehaviour, ComparisonTakesComposedAndDecomposedCharactersForTheSame) {
    for (NSString* text : EveryKindOf("caf\u00e9")) {
        EXPECT_EQ([text compare:FromUTF8("caf\u00e9")], NSOrderedSame);
        EXPECT_EQ([text compare:FromUTF8("cafe\u0301")], NSOrderedSame);
        EXPECT_EQ([text compare:@"cafe"], NSOrderedDescending);
        EXPECT_EQ([text compare:@"caff"], NSOrderedAscending);
    }
    EXPECT_EQ([FromUTF8("a\u0323\u0307") compare:FromUTF8("a\u0307\u0323")], NSOrderedSame);
    EXPECT_EQ([FromUTF8("a\u0301\u0300") compare:FromUTF8("a\u0300\u0301")], NSOrderedDescending);
    EXPECT_EQ([FromUTF8("\U0001F3AC") compare:FromUTF8("\uFB01")], NSOrderedDescending);
}

TEST_F(StringBehaviour, HangulSyllablesAreNotTakenApart) {
    EXPECT_NE([FromUTF8("\uac00") compare:FromUTF8("\u1100\u1161")], NSOrderedSame);
}

TEST_F(StringBehaviour, LiteralComparisonTellsComposedAndDecomposedCharactersApart) {
    for (NSString* text : EveryKindOf("\u00e9")) {
        EXPECT_EQ([text compare:FromUTF8("\u00e9") options:NSLiteralSearch], NSOrderedSame);
        EXPECT_EQ([text compare:FromUTF8("e\u0301") options:NSLiteralSearch], NSOrderedDescending);
    }
    EXPECT_EQ([FromUTF8("\U0001F3AC") compare:FromUTF8("\uFB01") options:NSLiteralSearch],
              NSOrderedAscending)
        << "code units, not code points";
}

TEST_F(StringBehaviour, EqualityIsLiteral) {
    for (NSString* text : EveryKindOf("\u00e9")) {
        EXPECT_TRUE([text isEqualToString:FromUTF8("\u00e9")]);
        EXPECT_FALSE([text isEqualToString:FromUTF8("e\u0301")]);
        EXPECT_FALSE([text isEqual:FromUTF8("e\u0301")]);
        EXPECT_FALSE([text isEqualToString:nil]);
        EXPECT_FALSE([text isEqual:@(5)]);
    }
}

TEST_F(StringBehaviour, ComparisonOrdersTexts) {
    for (const NSStringCompareOptions options : kDefaultAndLiteral) {
        EXPECT_EQ([@"A" compare:@"a" options:options], NSOrderedAscending);
        EXPECT_EQ([@"b" compare:@"a" options:options], NSOrderedDescending);
        EXPECT_EQ([@"abc" compare:@"abcd" options:options], NSOrderedAscending);
        EXPECT_EQ([@"" compare:(NSString*)nil options:options], NSOrderedDescending);
    }
    EXPECT_EQ([@"" compare:(NSString*)nil], NSOrderedDescending);
}

TEST_F(StringBehaviour, ANilReceiverComparesAsTheSame) {
    NSString* nothing = nil;
    EXPECT_EQ([nothing compare:@"abc"], NSOrderedSame);
    EXPECT_EQ([nothing rangeOfString:@"abc"].location, 0U);
}

}  // namespace
