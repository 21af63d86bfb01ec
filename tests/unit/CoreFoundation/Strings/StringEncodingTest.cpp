#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>

#include <climits>
#include <set>
#include <string>

#include "VEKCommon/OwnedReference.h"
#include "platform/CoreFoundation/Strings/EightBitTables.h"
#include "tests/unit/CoreFoundation/Vectors.h"

namespace {

using testing::ElementsAre;

OwnedReference<CFStringRef> FromUnits(const std::vector<UniChar>& units) {
    return OwnedReference<CFStringRef>(CFStringCreateWithCharacters(
        kCFAllocatorDefault, units.data(), static_cast<CFIndex>(units.size())));
}

OwnedReference<CFStringRef> FromUTF8(const char* text) {
    return OwnedReference<CFStringRef>(
        CFStringCreateWithCString(kCFAllocatorDefault, text, kCFStringEncodingUTF8));
}

// The bytes without the NUL, or nothing.
std::optional<std::string> CString(CFStringRef text, CFStringEncoding encoding) {
    char buffer[64];
    return CFStringGetCString(text, buffer, sizeof buffer, encoding)
               ? std::optional<std::string>(buffer)
               : std::nullopt;
}

TEST(SystemEncoding, IsMacRoman) {
    EXPECT_EQ(CFStringGetSystemEncoding(), kCFStringEncodingMacRoman);
}

TEST(MacRoman, GoesThereAndBackForEveryByte) {
    for (int byte = 1; byte < 256; ++byte) {
        const char bytes[] = {static_cast<char>(byte), '\0'};
        const OwnedReference<CFStringRef> text(
            CFStringCreateWithCString(kCFAllocatorDefault, bytes, kCFStringEncodingMacRoman));
        ASSERT_NE(text, nullptr) << byte;
        ASSERT_EQ(CFStringGetLength(text.get()), 1) << byte;
        EXPECT_EQ(CString(text.get(), kCFStringEncodingMacRoman), bytes) << byte;
    }
}

TEST(MacRoman, HasNoCharacterTwice) {
    const auto& table = core_foundation::kMacRomanUpperHalf;
    EXPECT_EQ(std::set<char16_t>(table.begin(), table.end()).size(), table.size());
}

TEST(MacRoman, HasTheEuroTheIncrementAndTheLogo) {
    const OwnedReference<CFStringRef> text(
        CFStringCreateWithCString(kCFAllocatorDefault, "\xDB\xC6\xF0", kCFStringEncodingMacRoman));
    EXPECT_THAT(vectors::UnitsOf(text.get()), ElementsAre(0x20AC, 0x2206, 0xF8FF));
}

TEST(MacRoman, TakesTheOhmSignForOmega) {
    EXPECT_EQ(CString(FromUnits({0x2126}).get(), kCFStringEncodingMacRoman), "\xBD");
    EXPECT_EQ(CString(FromUnits({0x03A9}).get(), kCFStringEncodingMacRoman), "\xBD");
}

TEST(MacRoman, TakesALetterAndItsMarkForTheComposedLetter) {
    EXPECT_EQ(CString(FromUnits({'e', 0x301, 'x'}).get(), kCFStringEncodingMacRoman), "\x8Ex");
    EXPECT_EQ(CString(FromUnits({'x', 0x301}).get(), kCFStringEncodingMacRoman), std::nullopt);
}

TEST(MacRoman, AnswersFalseForWhatItLacks) {
    EXPECT_EQ(CString(FromUTF8("\u65e5").get(), kCFStringEncodingMacRoman), std::nullopt);
    EXPECT_EQ(CString(FromUTF8("\u0141\u00f3d\u017a").get(), kCFStringEncodingMacRoman),
              std::nullopt);
    EXPECT_EQ(CString(FromUnits({0xE01E}).get(), kCFStringEncodingMacRoman), std::nullopt);
}

TEST(GetCString, LeavesAnEmptyStringWhenItFails) {
    const OwnedReference<CFStringRef> text = FromUTF8("1234");
    char buffer[4] = {'x', 'x', 'x', 'x'};
    EXPECT_FALSE(CFStringGetCString(text.get(), buffer, sizeof buffer, kCFStringEncodingUTF8));
    EXPECT_EQ(buffer[0], '\0');
}

TEST(GetCString, CountsTheTerminator) {
    const OwnedReference<CFStringRef> text = FromUTF8("1234");
    char buffer[5];
    EXPECT_TRUE(CFStringGetCString(text.get(), buffer, sizeof buffer, kCFStringEncodingMacRoman));
    EXPECT_STREQ(buffer, "1234");
}

TEST(GetCString, WritesNothingIntoABufferOfNoBytes) {
    char buffer = 'x';
    EXPECT_FALSE(CFStringGetCString(CFSTR(""), &buffer, 0, kCFStringEncodingUTF8));
    EXPECT_FALSE(CFStringGetCString(CFSTR(""), &buffer, -1, kCFStringEncodingUTF8));
    EXPECT_EQ(buffer, 'x');
}

TEST(GetCString, AnswersFalseForAnUnpairedSurrogateInUTF8) {
    EXPECT_EQ(CString(FromUnits({'a', 0xD83C, 'b'}).get(), kCFStringEncodingUTF8), std::nullopt);
    EXPECT_EQ(CString(FromUnits({0xDFAC}).get(), kCFStringEncodingUTF8), std::nullopt);
}

TEST(GetCString, AnswersFalseForAnEncodingThatIsNotProvided) {
    EXPECT_EQ(CString(CFSTR("abc"), kCFStringEncodingNextStepLatin), std::nullopt);
    EXPECT_EQ(CString(CFSTR("abc"), kCFStringEncodingInvalidId), std::nullopt);
}

TEST(StringOfAnyUnits, KeepsUnpairedSurrogatesMarksAndNULs) {
    const std::vector<std::vector<UniChar>> texts = {
        {0xD83C}, {0xDFAC, 0xD83C}, {0xFEFF}, {0xFEFF, 'x'}, {0xFFFE, 0xFFFF},
        {0},      {'a', 0, 'b'},    {}};
    for (const std::vector<UniChar>& units : texts) {
        const OwnedReference<CFStringRef> text = FromUnits(units);
        EXPECT_EQ(vectors::UnitsOf(text.get()), units);
        const OwnedReference<CFStringRef> copy(CFStringCreateCopy(kCFAllocatorDefault, text.get()));
        EXPECT_EQ(vectors::UnitsOf(copy.get()), units);
        const OwnedReference<CFMutableStringRef> changed(
            CFStringCreateMutableCopy(kCFAllocatorDefault, 0, text.get()));
        EXPECT_TRUE(CFEqual(changed.get(), text.get()));
        EXPECT_EQ(CFHash(changed.get()), CFHash(text.get()));
        CFStringReplaceAll(changed.get(), CFSTR("other"));
        CFStringReplaceAll(changed.get(), text.get());
        EXPECT_EQ(vectors::UnitsOf(changed.get()), units);
    }
}

TEST(HugeString, GoesThroughEveryConversion) {
    constexpr std::size_t kLength = 5000000;
    const std::string bytes(kLength, 'x');
    const OwnedReference<CFStringRef> text = FromUTF8(bytes.c_str());
    EXPECT_EQ(CFStringGetLength(text.get()), static_cast<CFIndex>(kLength));
    std::string back(kLength + 1, '?');
    EXPECT_TRUE(CFStringGetCString(text.get(), back.data(), static_cast<CFIndex>(back.size()),
                                   kCFStringEncodingMacRoman));
    EXPECT_EQ(back.c_str(), bytes);
    char little[32];
    EXPECT_FALSE(CFStringGetCString(text.get(), little, sizeof little, kCFStringEncodingUTF8));
}

TEST(FileSystemRepresentation, IsDecomposed) {
    char buffer[64];
    ASSERT_TRUE(
        CFStringGetFileSystemRepresentation(FromUTF8("\u00fc\uac00").get(), buffer, sizeof buffer));
    EXPECT_STREQ(buffer, "u\u0308\u1100\u1161");
}

TEST(FileSystemRepresentation, LeavesSymbolsAndCompatibilityIdeographsAlone) {
    char buffer[64];
    ASSERT_TRUE(CFStringGetFileSystemRepresentation(FromUTF8("\u212b\uf900\U0002f800\u00e9").get(),
                                                    buffer, sizeof buffer));
    EXPECT_STREQ(buffer, "\u212b\uf900\U0002f800e\u0301");
    ASSERT_TRUE(
        CFStringGetFileSystemRepresentation(FromUTF8("\ufb1f\u1f71").get(), buffer, sizeof buffer))
        << "the characters behind and before these are not left alone";
    EXPECT_STREQ(buffer, "\u05f2\u05b7\u03b1\u0301");
}

TEST(FileSystemRepresentation, AnswersFalseWhenItDoesNotFitOrIsNoText) {
    char buffer[4] = {'x', 'x', 'x', 'x'};
    EXPECT_FALSE(CFStringGetFileSystemRepresentation(CFSTR("abcd"), buffer, sizeof buffer));
    EXPECT_EQ(buffer[0], '\0');
    EXPECT_FALSE(
        CFStringGetFileSystemRepresentation(FromUnits({0xD800}).get(), buffer, sizeof buffer));
}

TEST(GetBytes, TellsTheSizeWithoutABuffer) {
    CFIndex used = 0;
    const OwnedReference<CFStringRef> text = FromUTF8("\u00e9\u65e5\U0001F3AC");
    EXPECT_EQ(CFStringGetBytes(text.get(), CFRangeMake(0, 4), kCFStringEncodingUTF8, 0, false,
                               nullptr, 0, &used),
              4);
    EXPECT_EQ(used, 9);
}

TEST(CreateWithCString, AnswersNullForBytesThatAreNoText) {
    for (const char* bytes : {"\xff", "a\xc3", "\xc0\xaf", "\xed\xa0\x80", "\xf4\x90\x80\x80"}) {
        EXPECT_EQ(FromUTF8(bytes), nullptr);
    }
}

TEST(CreateWithBytes, LeavesOutHalfAUnitOfUTF16) {
    const UInt8 bytes[] = {'a', 'b', 'c'};
    const std::pair<CFStringEncoding, std::vector<UniChar>> cases[] = {
        {kCFStringEncodingUTF16, {0x6261}},
        {kCFStringEncodingUTF16LE, {0x6261}},
        {kCFStringEncodingUTF16BE, {0x6162}},
    };
    for (const auto& [encoding, units] : cases) {
        const OwnedReference<CFStringRef> text(
            CFStringCreateWithBytes(kCFAllocatorDefault, bytes, sizeof bytes, encoding, false));
        EXPECT_EQ(vectors::UnitsOf(text.get()), units);
    }
    const OwnedReference<CFStringRef> external(CFStringCreateWithBytes(
        kCFAllocatorDefault, bytes, sizeof bytes, kCFStringEncodingUTF16, true));
    EXPECT_THAT(vectors::UnitsOf(external.get()), ElementsAre(0x6162));
}

TEST(CreateWithBytes, LeavesOutTheMarkOfUTF8WhereverTheBytesComeFrom) {
    const UInt8 bytes[] = {0xEF, 0xBB, 0xBF, 'a', 0xEF, 0xBB, 0xBF};
    for (const bool external : {false, true}) {
        const OwnedReference<CFStringRef> text(CFStringCreateWithBytes(
            kCFAllocatorDefault, bytes, sizeof bytes, kCFStringEncodingUTF8, external));
        EXPECT_THAT(vectors::UnitsOf(text.get()), ElementsAre('a', 0xFEFF));
        const OwnedReference<CFStringRef> mark(CFStringCreateWithBytes(
            kCFAllocatorDefault, bytes, 3, kCFStringEncodingUTF8, external));
        EXPECT_EQ(CFStringGetLength(mark.get()), 0);
    }
    EXPECT_EQ(CFStringGetLength(FromUTF8("\uFEFFab").get()), 2);
}

TEST(IntValue, SkipsBlanksBeforeAndAfterTheSign) {
    const std::vector<std::pair<const char*, SInt32>> cases = {
        {"- 5", -5},
        {"+ 5", 5},
        {" \t-\n 5", -5},
        {"-\u00A05", -5},
        {"\u30005", 5},
        {"\u2000\u200B5", 5},
        {"\x01\x7F"
         "5",
         5},
        {"- ", 0},
        {"- - 5", 0},
        {"-", 0},
        {"\u20285", 0},
        {"\u200C5", 0},
        {"\u00A15", 0},
        {"5 6", 5},
        {"- 2147483649", INT_MIN},
    };
    for (const auto& [text, value] : cases) {
        EXPECT_EQ(CFStringGetIntValue(FromUTF8(text).get()), value) << text;
    }
}

TEST(Format, ReadsCStringsInTheSystemEncoding) {
    for (int byte = 1; byte < 256; ++byte) {
        const char bytes[] = {static_cast<char>(byte), '\0'};
        const OwnedReference<CFStringRef> expected(
            CFStringCreateWithCString(kCFAllocatorDefault, bytes, kCFStringEncodingMacRoman));
        const OwnedReference<CFStringRef> text(
            CFStringCreateWithFormat(kCFAllocatorDefault, nullptr, CFSTR("%s"), bytes));
        EXPECT_TRUE(CFEqual(text.get(), expected.get())) << byte;
    }
}

TEST(Format, IgnoresTheWidthAndPrecisionOfObjects) {
    const CFStringRef formats[] = {CFSTR("[%10@]"),  CFSTR("[%-10@]"),    CFSTR("[%.1@]"),
                                   CFSTR("[%3.2@]"), CFSTR("[%1$10.1@]"), CFSTR("[%@]")};
    for (const CFStringRef format : formats) {
        const OwnedReference<CFStringRef> text(
            CFStringCreateWithFormat(kCFAllocatorDefault, nullptr, format, CFSTR("abc")));
        EXPECT_EQ(vectors::Shown(text.get()), "\"[abc]\"") << vectors::Shown(format);
    }
    const OwnedReference<CFStringRef> swapped(CFStringCreateWithFormat(
        kCFAllocatorDefault, nullptr, CFSTR("%2$5@ %1$5@"), CFSTR("a"), CFSTR("b")));
    EXPECT_EQ(vectors::Shown(swapped.get()), "\"b a\"");
}

TEST(Format, KeepsTheWidthOfEverythingElse) {
    const OwnedReference<CFStringRef> text(CFStringCreateWithFormat(
        kCFAllocatorDefault, nullptr, CFSTR("%5d|%-4s|%*d|%%|%.1f"), 7, "ab", 3, 1, 2.25));
    EXPECT_EQ(vectors::Shown(text.get()), "\"    7|ab  |  1|%|2.2\"");
}

TEST(Format, WritesPointersInHexadecimal) {
    const auto* pointer = reinterpret_cast<const void*>(0xABC);
    const OwnedReference<CFStringRef> text(CFStringCreateWithFormat(
        kCFAllocatorDefault, nullptr, CFSTR("%p %p %d"), pointer, nullptr, 5));
    EXPECT_EQ(vectors::Shown(text.get()), "\"0xabc 0x0 5\"");
    const OwnedReference<CFStringRef> swapped(CFStringCreateWithFormat(
        kCFAllocatorDefault, nullptr, CFSTR("%2$p %1$p"), pointer, nullptr));
    EXPECT_EQ(vectors::Shown(swapped.get()), "\"0x0 0xabc\"");
}

TEST(Format, TakesAWidthThatIsAnArgumentOffTheArguments) {
    const OwnedReference<CFStringRef> text(CFStringCreateWithFormat(
        kCFAllocatorDefault, nullptr, CFSTR("%*@|%d|%4p"), 1, CFSTR("abc"), 5, nullptr));
    EXPECT_EQ(vectors::Shown(text.get()).substr(0, 7), "\"abc|5|");
}

TEST(Format, WritesTheLetterOfAConversionThatDoesNotExist) {
    const std::pair<CFStringRef, const char*> cases[] = {
        {CFSTR("%y%d"), "\"y5\""}, {CFSTR("%-3y"), "\"y\""}, {CFSTR("a%"), "\"a\""},
        {CFSTR("a%5"), "\"a\""},   {CFSTR(""), "\"\""},
    };
    for (const auto& [format, expected] : cases) {
        const OwnedReference<CFStringRef> text(
            CFStringCreateWithFormat(kCFAllocatorDefault, nullptr, format, 5));
        EXPECT_EQ(vectors::Shown(text.get()), expected);
    }
}

}  // namespace
