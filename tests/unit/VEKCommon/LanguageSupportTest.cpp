#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

#include "VEKCommon/CLanguageSupport.h"
#include "platform/Testing/LiveObjects.h"
#include "platform/Testing/LogCapture.h"
#include "tests/support/EnvironmentVariable.h"
#include "tests/support/HomeFolder.h"
#include "tests/support/OwnedObject.h"
#include "tests/unit/VEKCommon/Failures.h"

namespace {

using platform_testing::LeftOverBy;
using test_support::OwnedObject;

static_assert(std::has_virtual_destructor_v<CLanguageSupport>);

constexpr std::string_view kXml =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<plist version=\"1.0\"><dict><key>Color Board</key><string>Farbtafel</string></dict></plist>";

std::string Utf8(CFStringRef string) {
    char text[256] = "(null)";
    if (string != nullptr) {
        EXPECT_TRUE(CFStringGetCString(string, text, sizeof text, kCFStringEncodingUTF8));
    }
    return text;
}

// The result of a lookup; a copy that the caller owns is released.
std::string Found(CLanguageSupport& support, CFStringRef key) {
    CFStringRef string = support.CopyStringForKey(key);
    std::string text = Utf8(string);
    if (!support.HasDictionary()) {
        CFRelease(string);
    }
    return text;
}

std::string FoundIn(const char* language, CFStringRef key) {
    CLanguageSupport support(language);
    return Found(support, key);
}

class LanguageSupport : public ::testing::Test {
  protected:
    platform_testing::AutoreleasePool pool_;
    test_support::HomeFolder home_;
};

TEST_F(LanguageSupport, XmlFileTranslates) {
    home_.WriteTranslations("de", kXml);
    EXPECT_EQ(FoundIn("de", CFSTR("Color Board")), "Farbtafel");
}

TEST_F(LanguageSupport, BinaryFileTranslates) {
    using namespace std::string_view_literals;
    home_.WriteTranslations("de",
                            "bplist00\xD1\x01\x02Qk\x53VAL\x08\x0B\x0D"
                            "\0\0\0\0\0\0\x01\x01"
                            "\0\0\0\0\0\0\0\x03"
                            "\0\0\0\0\0\0\0\0"
                            "\0\0\0\0\0\0\0\x11"sv);
    EXPECT_EQ(FoundIn("de", CFSTR("k")), "VAL");
}

TEST_F(LanguageSupport, OpenStepFileTranslates) {
    home_.WriteTranslations("de", "{ \"Color Board\" = Farbtafel; }");
    EXPECT_EQ(FoundIn("de", CFSTR("Color Board")), "Farbtafel");
}

TEST_F(LanguageSupport, StringsFileTranslates) {
    home_.WriteTranslations("de", "/* titles */\n\"Color Board\" = \"Farbtafel\";\n");
    EXPECT_EQ(FoundIn("de", CFSTR("Color Board")), "Farbtafel");
}

TEST_F(LanguageSupport, EachLanguageHasItsOwnFile) {
    home_.WriteTranslations("de", "\"Viewer\" = \"Betrachter\";");
    home_.WriteTranslations("zh-Hans", "\"Viewer\" = \"检视器\";");
    EXPECT_EQ(FoundIn("de", CFSTR("Viewer")), "Betrachter");
    EXPECT_EQ(FoundIn("zh-Hans", CFSTR("Viewer")), "检视器");
    EXPECT_EQ(FoundIn("fr", CFSTR("Viewer")), "Viewer");
}

TEST_F(LanguageSupport, KeyAbsentFromALoadedDictionaryIsNull) {
    home_.WriteTranslations("de", kXml);
    EXPECT_EQ(FoundIn("de", CFSTR("Absent")), "(null)");
}

TEST_F(LanguageSupport, EmptyDictionaryCountsAsLoaded) {
    home_.WriteTranslations("de", "<plist><dict/></plist>");
    EXPECT_EQ(FoundIn("de", CFSTR("Color Board")), "(null)");
}

TEST_F(LanguageSupport, MissingFolderEchoesTheKey) {
    EXPECT_EQ(FoundIn("de", CFSTR("Color Board")), "Color Board");
}

TEST_F(LanguageSupport, MissingFileEchoesTheKey) {
    std::filesystem::create_directories(home_.MakersFolder());
    EXPECT_EQ(FoundIn("de", CFSTR("Color Board")), "Color Board");
}

TEST_F(LanguageSupport, TagCannotLeaveTheMakersFolder) {
    home_.WriteTranslations("de", kXml);
    std::filesystem::create_directories(home_.MakersFolder() / "below");
    std::ofstream(home_.MakersFolder() / "below" / "de.plist") << kXml;
    std::ofstream(home_.MakersFolder().parent_path() / "de.plist") << kXml;
    ASSERT_EQ(FoundIn("de", CFSTR("Color Board")), "Farbtafel");
    for (const char* tag : {"../de", "../Solvanto/de", "./de", "below/de", "/de"}) {
        EXPECT_EQ(FoundIn(tag, CFSTR("Color Board")), "Color Board") << tag;
    }
}

TEST_F(LanguageSupport, FileInPlaceOfTheFolderEchoesTheKey) {
    std::filesystem::create_directories(home_.MakersFolder().parent_path());
    std::ofstream(home_.MakersFolder()) << kXml;
    EXPECT_EQ(FoundIn("de", CFSTR("Color Board")), "Color Board");
}

TEST_F(LanguageSupport, FolderInPlaceOfTheFileEchoesTheKey) {
    std::filesystem::create_directories(home_.MakersFolder() / "de.plist");
    EXPECT_EQ(FoundIn("de", CFSTR("Color Board")), "Color Board");
}

TEST_F(LanguageSupport, BrokenFileEchoesTheKey) {
    for (const char* document : {"", "<plist><dict><key>Color Board</key>", "bplist00", "{a=b"}) {
        home_.WriteTranslations("de", document);
        EXPECT_EQ(FoundIn("de", CFSTR("Color Board")), "Color Board") << document;
    }
}

TEST_F(LanguageSupport, FileWhoseRootIsNoDictionaryCountsAsMissing) {
    for (const char* document : {"<plist><array><string>Color Board</string></array></plist>",
                                 "<plist><string>Color Board</string></plist>", "(a, b, c)",
                                 "<plist><integer>5</integer></plist>"}) {
        home_.WriteTranslations("de", document);
        CLanguageSupport support("de");
        EXPECT_FALSE(support.HasDictionary()) << document;
        EXPECT_EQ(Found(support, CFSTR("Color Board")), "Color Board") << document;
    }
}

TEST_F(LanguageSupport, ProblemsAreNotLogged) {
    home_.WriteTranslations("de", "<plist><dict>");
    platform_testing::LogCapture log;
    FoundIn("de", CFSTR("k"));
    FoundIn("fr", CFSTR("k"));
    EXPECT_TRUE(log.Lines().empty());
}

TEST_F(LanguageSupport, FileIsReadAnewByEachInstance) {
    home_.WriteTranslations("de", "k = one;");
    EXPECT_EQ(FoundIn("de", CFSTR("k")), "one");
    home_.WriteTranslations("de", "k = two;");
    EXPECT_EQ(FoundIn("de", CFSTR("k")), "two");
}

TEST_F(LanguageSupport, TagWithoutTranslationIsTheNameOfTheFileToo) {
    home_.WriteTranslations("VEKLanguage", "k = fallback;");
    EXPECT_EQ(FoundIn("VEKLanguage", CFSTR("k")), "fallback");
}

TEST_F(LanguageSupport, TagOfSixteenCharactersNamesItsFile) {
    home_.WriteTranslations("abcdefghijklmnop", "k = long;");
    EXPECT_EQ(FoundIn("abcdefghijklmnop", CFSTR("k")), "long");
}

// Named Copy, but borrowed: it lives as long as the dictionary.
TEST_F(LanguageSupport, StringFromTheDictionaryIsNotRetained) {
    home_.WriteTranslations("de", kXml);
    CLanguageSupport support("de");
    CFStringRef string = support.CopyStringForKey(CFSTR("Color Board"));
    const CFIndex before = CFGetRetainCount(string);
    EXPECT_EQ(support.CopyStringForKey(CFSTR("Color Board")), string);
    EXPECT_EQ(CFGetRetainCount(string), before);
}

TEST_F(LanguageSupport, EchoedKeyIsACopyThatTheCallerOwns) {
    CLanguageSupport support("de");
    const OwnedObject<CFMutableStringRef> key = CFStringCreateMutable(kCFAllocatorDefault, 0);
    CFStringReplaceAll(key, CFSTR("Color Board"));
    const OwnedObject<CFStringRef> copy = support.CopyStringForKey(key);
    CFStringReplaceAll(key, CFSTR("changed"));
    EXPECT_EQ(Utf8(copy), "Color Board");
}

TEST_F(LanguageSupport, NothingIsLeftOver) {
    home_.WriteTranslations("de", kXml);
    home_.WriteTranslations("array", "(a)");
    for (const char* language : {"de", "array", "missing"}) {
        EXPECT_EQ(LeftOverBy([&] { FoundIn(language, CFSTR("Color Board")); }), "") << language;
    }
}

TEST_F(LanguageSupport, SelfIsTheInstanceMadeLastAndNullOnceAnyIsGone) {
    EXPECT_EQ(CLanguageSupport::sSelf, nullptr);
    {
        CLanguageSupport first("de");
        EXPECT_EQ(CLanguageSupport::sSelf, &first);
        auto second = std::make_unique<CLanguageSupport>("fr");
        EXPECT_EQ(CLanguageSupport::sSelf, second.get());
        second.reset();
        EXPECT_EQ(CLanguageSupport::sSelf, nullptr) << "not the first one again";
    }
    EXPECT_EQ(CLanguageSupport::sSelf, nullptr);
}

TEST_F(LanguageSupport, FileThatCannotEvenBeNamedOrOpenedCountsAsMissing) {
    home_.WriteTranslations("de", kXml);
    Failures::Current().url = true;
    EXPECT_EQ(LeftOverBy([] { EXPECT_EQ(FoundIn("de", CFSTR("Color Board")), "Color Board"); }),
              "");
    Failures::Current() = Failures();
    Failures::Current().readStream = true;
    EXPECT_EQ(LeftOverBy([] { EXPECT_EQ(FoundIn("de", CFSTR("Color Board")), "Color Board"); }),
              "");
    Failures::Current() = Failures();
    EXPECT_EQ(FoundIn("de", CFSTR("Color Board")), "Farbtafel");
}

TEST_F(LanguageSupport, EndOfTheOlderInstanceMakesSelfNullToo) {
    auto older = std::make_unique<CLanguageSupport>("de");
    const CLanguageSupport newer("fr");
    ASSERT_EQ(CLanguageSupport::sSelf, &newer);
    older.reset();
    EXPECT_EQ(CLanguageSupport::sSelf, nullptr) << "although the newer one lives";
}

TEST_F(LanguageSupport, HomeFolderMayHaveAnyNameInUtf8) {
    const std::filesystem::path home = home_.Path() / "J\u00FCrgen \u65E5\u672C";
    const std::filesystem::path folder = home / "Library/Application Support/Solvanto";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "de.plist") << kXml;
    const test_support::EnvironmentVariable variable("HOME", home);
    EXPECT_EQ(FoundIn("de", CFSTR("Color Board")), "Farbtafel");
}

}  // namespace
