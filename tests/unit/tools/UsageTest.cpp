// Command lines that are refused, each with one clear line.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tools/PlanOf.h"

namespace krt9ctl {
namespace {

using testing::HasSubstr;
using testing::Not;

TEST(Usage, NumbersOutOfRangeOrNoNumbersAreRefused) {
    for (const char* text : {"4294967296", "-1", "+5", "5x", "0x", "", " 5", "1.5", "--5", "1e3",
                             "99999999999999999999999", "2000000000000", "0x1ffffffff"}) {
        EXPECT_THAT(ComplaintAbout({"select", "1", "--", text}),
                    HasSubstr("is not a whole number from 0 to 4294967295"))
            << text;
        EXPECT_THAT(ComplaintAbout({"value", "--", text}), HasSubstr("is not an element")) << text;
    }
}

TEST(Usage, HelpWithAVerbThatIsNoneIsNoHelp) {
    EXPECT_EQ(ComplaintAbout({"pres", "--help"}), "there is no verb 'pres'; did you mean 'press'?");
    EXPECT_EQ(ComplaintAbout({"mouse", "strat", "--help"}),
              "there is no verb 'mouse strat'; did you mean 'mouse start'?");
    for (const std::vector<std::string>& words : {std::vector<std::string>{"--help"},
                                                  {"mouse", "--help"},
                                                  {"press", "--help"},
                                                  {"--help", "press"},
                                                  {"--json", "--help"},
                                                  {"--timeout", "2", "--help"}}) {
        EXPECT_NO_THROW(ParseCommandLine(TheGrammar(), words));
    }
}

TEST(Usage, SetTakesSignedNumbersOnly) {
    EXPECT_EQ(ComplaintAbout({"set", "1", "-2147483648"}), "accepted");
    EXPECT_EQ(ComplaintAbout({"set", "1", "2147483647"}), "accepted");
    EXPECT_THAT(ComplaintAbout({"set", "1", "2147483648"}), HasSubstr("-2147483648 to 2147483647"));
    EXPECT_THAT(ComplaintAbout({"set", "1", "-2147483649"}), HasSubstr("-2147483648 to"));
}

TEST(Usage, KeyCodesHave16Bits) {
    EXPECT_EQ(ComplaintAbout({"keystroke", "0xFFFF"}), "accepted");
    EXPECT_THAT(ComplaintAbout({"keystroke", "65536"}), HasSubstr("from 1 to 65535"));
}

TEST(Usage, UnpairedCoordinatesAreRefused) {
    for (const char* text : {"100", "100,", ",200", "100,200,300", "100;200", "1.5,2", "a,b",
                             "100, 200", "4294967296,0", "0,-2147483649"}) {
        EXPECT_THAT(ComplaintAbout({"drag", text, "1,1"}), HasSubstr("is not X,Y")) << text;
    }
}

TEST(Usage, CoordinatesReachFromSignedToUnsignedLimits) {
    EXPECT_EQ(ComplaintAbout({"drag", "-2147483648,4294967295", "0,0"}), "accepted");
}

TEST(Usage, BadHexIsRefused) {
    EXPECT_EQ(ComplaintAbout({"request", "JElV", "3b0"}), "HEX: '3b0' is not pairs of hex digits");
}

TEST(Usage, ACodeOfAnotherLengthIsRefused) {
    EXPECT_EQ(ComplaintAbout({"request", "JEl"}),
              "CODE: 'JEl' is not four printable ASCII characters");
    EXPECT_THAT(ComplaintAbout({"request", "JElVV"}), HasSubstr("not four printable"));
}

TEST(Usage, ATitleWithAZeroByteIsRefused) {
    EXPECT_EQ(ComplaintAbout({"window", std::string("a\0b", 3)}),
              "TITLE: a text cannot contain a zero byte");
}

TEST(Usage, ATitleThatIsNotUtf8IsRefused) {
    EXPECT_EQ(ComplaintAbout({"window", "\xFF\xFE"}), "TITLE: the text is not UTF-8");
}

TEST(Usage, AKeyMustFitItsPlaceInTheRecord) {
    EXPECT_EQ(ComplaintAbout({"target", std::string(255, 'k')}), "accepted");
    EXPECT_THAT(ComplaintAbout({"target", std::string(256, 'k')}), HasSubstr("1 to 255 bytes"));
    EXPECT_THAT(ComplaintAbout({"target", ""}), HasSubstr("1 to 255 bytes"));
    EXPECT_THAT(ComplaintAbout({"target", "A/"}), HasSubstr("1 to 255 bytes"));
    EXPECT_THAT(ComplaintAbout({"target", "/B"}), HasSubstr("1 to 255 bytes"));
}

TEST(Usage, AKeyOutsideTheSystemEncodingIsRefused) {
    EXPECT_THAT(ComplaintAbout({"target", "\xE6\xBC\xA2"}),
                HasSubstr("characters outside the system encoding"));
}

TEST(Usage, AtMost64CandidatesAreSent) {
    std::vector<std::string> words(65, "A");
    words[0] = "target";
    EXPECT_EQ(ComplaintAbout(words), "accepted");
    words.push_back("A");
    EXPECT_EQ(ComplaintAbout(words), "KEY: at most 64 candidates");
}

TEST(Usage, DownAndUpExcludeEachOther) {
    EXPECT_THAT(ComplaintAbout({"keystroke", "49", "--down", "--up"}), HasSubstr("exclude"));
}

TEST(Usage, RefreshNeedsAnOption) {
    EXPECT_THAT(ComplaintAbout({"refresh"}), HasSubstr("--profile, --timecode or --clip"));
}

TEST(Usage, MissingAndSurplusWordsAreRefused) {
    for (const std::vector<std::string>& words :
         std::vector<std::vector<std::string>>{{},
                                               {"value"},
                                               {"value", "1", "2"},
                                               {"select", "59"},
                                               {"mouse"},
                                               {"mouse", "1,2"},
                                               {"observe"},
                                               {"observe", "nothing"},
                                               {"target"},
                                               {"juggle"},
                                               {"value", "1", "--loud"},
                                               {"drag", "1,2"},
                                               {"pointer", "pointer"},
                                               {"value", "59", "press", "59"},
                                               {"drag", "1,2", "3,4", "--steps"}}) {
        EXPECT_NE(ComplaintAbout(words), "accepted") << testing::PrintToString(words);
    }
}

TEST(Usage, AnUnknownVerbIsNamed) {
    EXPECT_EQ(ComplaintAbout({"juggle", "59"}), "there is no verb 'juggle'");
    EXPECT_EQ(ComplaintAbout({"mouse", "juggle"}), "there is no verb 'mouse juggle'");
    EXPECT_EQ(ComplaintAbout({}), "a verb is missing");
    EXPECT_EQ(ComplaintAbout({"mouse"}), "a verb is missing");
}

TEST(Usage, TheNearestVerbAndOptionAreNamed) {
    EXPECT_EQ(ComplaintAbout({"presss", "59"}), "there is no verb 'presss'; did you mean 'press'?");
    EXPECT_EQ(ComplaintAbout({"mouse", "strat"}),
              "there is no verb 'mouse strat'; did you mean 'mouse start'?");
    EXPECT_EQ(ComplaintAbout({"mosue", "start", "1,2"}),
              "there is no verb 'mosue'; did you mean 'mouse'?");
    EXPECT_EQ(ComplaintAbout({"drag", "1,2", "3,4", "--otpion"}),
              "there is no option '--otpion'; did you mean '--option'?");
    EXPECT_EQ(ComplaintAbout({"drag", "1,2", "3,4", "--frobnicate"}),
              "there is no option '--frobnicate'");
    EXPECT_EQ(ComplaintAbout({"--frobnicate"}), "there is no option '--frobnicate'");
    EXPECT_EQ(ComplaintAbout({"value", "1", "2"}), "unexpected argument '2'");
    EXPECT_EQ(ComplaintAbout({"set", "87", "--", "-6", "--expect"}),
              "--expect stands after --, where there are no options");
}

TEST(Usage, ElementsAreNumbersOrIdentifiers) {
    EXPECT_EQ(SentBy({"value", "_NS:59"}), SentBy({"value", "59"}));
    EXPECT_EQ(SentBy({"select", "_NS:59", "2"}), SentBy({"select", "59", "2"}));
    for (const char* text : {"NS:59", "_NS:", "_NS:-1", "_NS:4294967296", "_ns:59", "_NS:_NS:5"}) {
        EXPECT_THAT(ComplaintAbout({"value", text}),
                    HasSubstr("is not an element: a number from 0 to 4294967295, or _NS:"))
            << text;
    }
}

TEST(Usage, KeysAreNamesOrCodesWithModifiersBeforeThem) {
    const auto both = [](const std::string& code, const std::string& modifiers) {
        return std::vector<std::string>{"JCPK " + code + "000000" + modifiers + "01000000",
                                        "JCPK " + code + "000000" + modifiers + "00000000"};
    };
    EXPECT_EQ(SentBy({"keystroke", "cmd+b"}), both("0b", "00010000"));
    EXPECT_EQ(SentBy({"keystroke", "COMMAND+B"}), both("0b", "00010000"));
    EXPECT_EQ(SentBy({"keystroke", "ctrl+opt+shift+cmd+left"}), both("7b", "001b0000"));
    EXPECT_EQ(SentBy({"keystroke", "cmd+0x31", "--shift"}), both("31", "00030000"));
    EXPECT_EQ(SentBy({"keystroke", "cmd+-"}), both("1b", "00010000"));
    EXPECT_EQ(SentBy({"keystroke", "digit1"}), both("12", "00000000"));
    EXPECT_EQ(SentBy({"keystroke", "1"}), both("01", "00000000"));
}

TEST(Usage, KeysThatAreNotPostedOrNotKnownAreRefusedWithTheReason) {
    const std::pair<const char*, const char*> cases[] = {
        {"a", "KEY: 'a' is key code 0, which the driver never posts"},
        {"cmd+a", "KEY: 'a' is key code 0, which the driver never posts"},
        {"0", "KEY: '0' is key code 0, which the driver never posts"},
        {"0x00", "KEY: '0x00' is key code 0, which the driver never posts"},
        {"Esc", "KEY: there is no key 'Esc'; did you mean 'escape'? The verb keys lists them"},
        {"cmd+enter",
         "KEY: there is no key 'enter'; did you mean 'return'? The verb keys lists them"},
        {"cmd", "KEY: 'cmd' is a modifier: a key follows it, as in cmd+b"},
        {"cmd+1", "KEY: '1' could be the key or the key code: type digit1 or 0x1"},
        {"sapce", "KEY: there is no key 'sapce'; did you mean 'space'? The verb keys lists them"},
        {"frobnicate", "KEY: there is no key 'frobnicate'; the verb keys lists them"},
        {"hyper+b", "KEY: 'hyper' is not a modifier: cmd, shift, opt or ctrl"},
        {"b+cmd", "KEY: 'b' is not a modifier: cmd, shift, opt or ctrl"},
        {"cmd+", "KEY: there is no key ''; the verb keys lists them"},
        {"", "KEY: there is no key ''; the verb keys lists them"},
    };
    for (const auto& [text, complaint] : cases) {
        EXPECT_EQ(ComplaintAbout({"keystroke", text}), complaint);
    }
}

TEST(Usage, EveryComplaintIsOneLineSafeForATerminal) {
    for (const char* text : {"a\nb", "\x1B[2J",
                             "\xC2\x9B"
                             "2J"}) {
        const std::string complaint = ComplaintAbout({"value", text});
        EXPECT_THAT(complaint, Not(HasSubstr("\n")));
        EXPECT_THAT(complaint, Not(HasSubstr("\x1B")));
        EXPECT_THAT(complaint, Not(HasSubstr("\xC2\x9B")));
        EXPECT_THAT(ComplaintAbout({text}), Not(HasSubstr("\x1B")));
    }
}

TEST(Usage, TheTimeoutIsAPositiveNumberOfSeconds) {
    const auto timeoutOf = [](const char* text) {
        return std::get<Invocation>(ParseCommandLine(TheGrammar(), {"ping", "--timeout", text}))
            .timeout;
    };
    EXPECT_EQ(timeoutOf("0.25"), 0.25);
    EXPECT_EQ(timeoutOf("86400"), 86400);
    for (const char* text : {"0", "-1", "86401", "nan", "inf", "1s", "", "0x10", "1e3", "."}) {
        EXPECT_THROW(timeoutOf(text), UsageError) << text;
    }
}

TEST(Usage, OptionsForAllVerbsMayStandBeforeAndAfterTheVerb) {
    const auto before = ParseCommandLine(TheGrammar(), {"--json", "--timeout", "2", "ping"});
    const auto after = ParseCommandLine(TheGrammar(), {"mouse", "end", "1,2", "--json"});
    EXPECT_TRUE(std::get<Invocation>(before).json);
    EXPECT_EQ(std::get<Invocation>(before).timeout, 2.0);
    EXPECT_TRUE(std::get<Invocation>(after).json);
    EXPECT_EQ(std::get<Invocation>(after).timeout, kUsualTimeout);
}

}  // namespace
}  // namespace krt9ctl
