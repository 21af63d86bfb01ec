// What leaves an application's dump before it is passed on, and what stays.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "companion/KRT9Companion.h"
#include "tools/report/Redaction.h"

namespace krt9ctl {
namespace {

using scene_notation::Answer;

std::string After(Redactor& redactor, const std::string& role, const std::string& attribute,
                  const std::string& text) {
    Answer answer = Answer::Of({text});
    redactor.Redact(role, attribute, answer);
    return std::get<std::string>(answer.value.content);
}

TEST(Redaction, KeepsStructureAndReplacesEveryOtherText) {
    Redactor redactor;
    for (const char* attribute : {"AXRole", "AXSubrole", "AXIdentifier"}) {
        EXPECT_EQ(After(redactor, "AXButton", attribute, "_NS:59"), "_NS:59");
    }
    for (const char* attribute : {"AXTitle", "AXDescription", "AXValue", "AXHelp", "AXDocument",
                                  "AXRoleDescription", "MyOwnAttribute"}) {
        const std::string after = After(redactor, "AXButton", attribute, "Secret Wedding");
        EXPECT_EQ(after.size(), 14U) << attribute;
        EXPECT_EQ(after.find_first_of("SW "), std::string::npos) << attribute << after;
    }
}

TEST(Redaction, KeepsLengthsAndWhatTheSystemEncodingCanHold) {
    Redactor redactor;
    for (const std::string text : {"Möwen – „Hafen“", "港", "ж", "𝄞 clef", "Café", ""}) {
        const std::string after = redactor.Replaced(text);
        EXPECT_EQ(after.size(), text.size()) << text;
        EXPECT_EQ(krt9::ToUtf16(after).size(), krt9::ToUtf16(text).size()) << text;
        EXPECT_EQ(krt9::ToSystemEncoding(after).has_value(),
                  krt9::ToSystemEncoding(text).has_value())
            << text;
    }
}

TEST(Redaction, KeepsEqualTextsEqualAndDifferentOnesDifferent) {
    Redactor redactor;
    std::set<std::string> seen;
    for (int i = 1000; i < 2000; ++i) {
        const std::string text = "Clip" + std::to_string(i);
        EXPECT_TRUE(seen.insert(redactor.Replaced(text)).second) << text;
        EXPECT_EQ(redactor.Replaced(text), redactor.Replaced(text));
    }
}

TEST(Redaction, ReplacesMoreTextsOfOneLetterThanThereAreLetters) {
    Redactor redactor;
    for (char letter = 32; letter < 127; ++letter) {
        EXPECT_EQ(redactor.Replaced({letter}).size(), 1U);
    }
}

TEST(Redaction, KeepsOnlyThoseTextsThatTheDriverReads) {
    Redactor redactor;
    for (const char* number : {"100", "-6", "+12.5", " 7 ", "0,25"}) {
        EXPECT_EQ(After(redactor, "AXTextField", "AXValue", number), number);
        EXPECT_NE(After(redactor, "AXStaticText", "AXValue", number), number);
        EXPECT_NE(After(redactor, "AXTextField", "AXTitle", number), number);
    }
    for (const char* text :
         {"24 Secret Street", "0049301234567890", "1.2.3", "01:00:00:00", "12e"}) {
        EXPECT_NE(After(redactor, "AXTextField", "AXValue", text), text);
    }
    EXPECT_EQ(After(redactor, "AXValueIndicator", "AXDescription", "Playhead"), "Playhead");
    EXPECT_NE(After(redactor, "AXValueIndicator", "AXDescription", "Playheads"), "Playheads");
}

TEST(Redaction, ReachesIntoArraysAndDictionariesAndTheirKeysAndEmptiesData) {
    using desktop_link::Array;
    using desktop_link::Dictionary;
    Redactor redactor;
    Answer answer = Answer::Of({Array{{std::string("Secret")},
                                      {Dictionary{{"Secret", {Array{{std::string("Secret")}}}}}},
                                      {desktop_link::Bytes{{'S', 'e'}}},
                                      {std::int64_t{7}}}});
    redactor.Redact("AXGroup", "AXList", answer);
    const std::string after = redactor.Replaced("Secret");
    EXPECT_EQ(answer.value.content,
              decltype(answer.value.content)(Array{{after},
                                                   {Dictionary{{after, {Array{{after}}}}}},
                                                   {desktop_link::Bytes{{0, 0}}},
                                                   {std::int64_t{7}}}));
}

}  // namespace
}  // namespace krt9ctl
