#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VEKCommon/MessageCodes.h"
#include "tools/CompanionMessage.h"

namespace krt9ctl {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

Bytes Text(std::string_view text) {
    return {text.begin(), text.end()};
}

CompanionMessage Message(MessageCode code, Bytes body) {
    return {code, std::move(body),
            std::chrono::system_clock::time_point(std::chrono::milliseconds(1500000000042)),
            std::nullopt};
}

std::string Line(MessageCode code, Bytes body) {
    return OneLine(MessageObject(Message(code, std::move(body))));
}

TEST(CompanionMessage, TextsAreDecodedWithoutTheirTerminator) {
    EXPECT_EQ(Line(kJFSC, Text(std::string_view("Clip 1\0", 7))),
              R"({"time":"2017-07-14T02:40:00.042Z","code":"JFSC","text":"Clip 1"})");
    EXPECT_THAT(Line(kJFTC, Text(std::string_view("01:00:00:00\0", 12))),
                HasSubstr(R"("text":"01:00:00:00")"));
    EXPECT_THAT(Line(kJSLg, Text(std::string_view("en\0", 3))), HasSubstr(R"("text":"en")"));
}

TEST(CompanionMessage, TextsAreOfTheSystemEncoding) {
    EXPECT_THAT(Line(kJFSC, {0x80, 0x8A, 0}), HasSubstr("\"text\":\"\xC3\x84\xC3\xA4\""));
}

TEST(CompanionMessage, AnEmptyTextIsAText) {
    EXPECT_THAT(Line(kJFSC, {0}), HasSubstr(R"("text":"")"));
}

TEST(CompanionMessage, MalformedTextsAreShownAsBytes) {
    const Bytes bodies[] = {{}, {'a'}, {'a', 0, 'b'}, {'a', 0, 'b', 0}, {0, 0}};
    for (const Bytes& body : bodies) {
        EXPECT_THAT(Line(kJFSC, body),
                    HasSubstr("\"body\":\"" + FormatHex(body) + "\",\"malformed\":true"));
        EXPECT_THAT(DescribeMessage(Message(kJFSC, body)), HasSubstr("malformed"));
    }
}

TEST(CompanionMessage, AStatusQueryHasNoBody) {
    EXPECT_THAT(Line(kStus, {}), EndsWith(R"("code":"Stus"})"));
    EXPECT_THAT(DescribeMessage(Message(kStus, {})), EndsWith(".042 Stus status query"));
    EXPECT_THAT(Line(kStus, {1}), HasSubstr(R"("body":"01","malformed":true)"));
}

TEST(CompanionMessage, AStatusQueryShowsItsAnswer) {
    CompanionMessage message = Message(kStus, {});
    message.answer = ControllerStatus{2, 16};
    EXPECT_THAT(OneLine(MessageObject(message)),
                EndsWith(R"("code":"Stus","units":2,"channels":16})"));
    EXPECT_THAT(DescribeMessage(message),
                EndsWith("Stus status query, answered: 2 units, 16 channels"));
}

TEST(CompanionMessage, UnknownCodesAreShownAsBytesAndNotCalledMalformed) {
    EXPECT_THAT(Line(7, {0xAB}), EndsWith(R"("code":"0x00000007","body":"ab"})"));
    EXPECT_THAT(DescribeMessage(Message(7, {0xAB})), EndsWith("unknown message, 1 bytes ab"));
}

TEST(CompanionMessage, ALongBodyIsCutForPeopleAndWholeForPrograms) {
    const Bytes body(100, 0xAA);
    EXPECT_THAT(DescribeMessage(Message(7, body)), EndsWith("aa..."));
    EXPECT_THAT(Line(7, body), HasSubstr(FormatHex(body)));
}

TEST(CompanionMessage, ControlCharactersDoNotReachATerminal) {
    const Bytes body{'a', 0x1B, '[', '2', 'J', '\n', 0};
    EXPECT_THAT(DescribeMessage(Message(kJFSC, body)), EndsWith(R"(clip: a\x1b[2J\x0a)"));
    EXPECT_THAT(Line(kJFSC, body), Not(HasSubstr("\x1B")));
}

}  // namespace
}  // namespace krt9ctl
