#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "PlanOf.h"
#include "protocol/MessageCodes.h"
#include "tools/Conversation.h"

namespace krt9ctl {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// Sends to answers prepared by the test; the last one is given again and again.
struct Conversation {
    ExitCode Hold(const std::vector<std::string>& words, std::vector<Answer> answers,
                  bool json = false) {
        Output output(out, err, json);
        return Converse(
            PlanOf(words),
            [&](const Request& request) {
                sent.push_back(FormatCode(request.code));
                return answers[std::min(sent.size(), answers.size()) - 1];
            },
            [this] { return sent.size() >= interruptAfter; }, output);
    }

    std::ostringstream out, err;
    std::vector<std::string> sent;
    std::size_t interruptAfter = 1000;
};

constexpr SInt32 kDelivered = kCFMessagePortSuccess;

TEST(Conversation, PrintsADecodedReplyForPeople) {
    Conversation talk;
    EXPECT_EQ(talk.Hold({"value", "59"}, {{kDelivered, {1, 0, 0, 0}}}), ExitCode::ok);
    EXPECT_EQ(talk.out.str(), "1\n");
    EXPECT_EQ(talk.err.str(), "");
}

TEST(Conversation, PrintsOneJsonObjectALineForPrograms) {
    Conversation talk;
    EXPECT_EQ(talk.Hold({"keystroke", "49"}, {{kDelivered, {}}}, true), ExitCode::ok);
    EXPECT_EQ(talk.out.str(),
              "{\"code\":\"JCPK\",\"delivered\":true}\n{\"code\":\"JCPK\",\"delivered\":true}\n");
}

TEST(Conversation, ARequestWithoutReplyIsSilentForPeople) {
    Conversation talk;
    EXPECT_EQ(talk.Hold({"press", "59"}, {{kDelivered, {}}}), ExitCode::ok);
    EXPECT_EQ(talk.out.str() + talk.err.str(), "");
}

TEST(Conversation, NothingWhereAReplyWasDueIsNoReply) {
    Conversation talk;
    EXPECT_EQ(talk.Hold({"value", "59"}, {{kDelivered, {}}}), ExitCode::noReply);
    EXPECT_EQ(talk.out.str(), "");
    EXPECT_THAT(talk.err.str(), HasSubstr("'JElV': the driver answered with nothing"));
}

TEST(Conversation, AReplyOfAnotherLengthIsABadReplyAndShown) {
    Conversation talk;
    EXPECT_EQ(talk.Hold({"value", "59"}, {{kDelivered, {1, 2}}}), ExitCode::badReply);
    EXPECT_THAT(talk.err.str(), HasSubstr("2 bytes where 4 were due: 0102"));
}

TEST(Conversation, AReplyWhereNoneWasDueIsABadReply) {
    Conversation talk;
    EXPECT_EQ(talk.Hold({"press", "59"}, {{kDelivered, {1}}}), ExitCode::badReply);
}

TEST(Conversation, EachTransportResultHasItsSentenceAndCode) {
    const struct {
        std::int32_t status;
        ExitCode code;
        const char* sentence;
    } cases[] = {
        {kPortMissing, ExitCode::noDriver, "no driver runs"},
        {-1, ExitCode::timeOut, "did not take the request in time"},
        {-2, ExitCode::timeOut, "did not answer in time"},
        {-3, ExitCode::transport, "no longer valid"},
        {-4, ExitCode::transport, "could not be carried"},
        {-5, ExitCode::transport, "ended before it answered"},
        {-99, ExitCode::transport, "not documented"},
    };
    for (const auto& each : cases) {
        Conversation talk;
        EXPECT_EQ(talk.Hold({"value", "59"}, {{each.status, {}}}), each.code) << each.status;
        EXPECT_THAT(talk.err.str(), HasSubstr(each.sentence)) << each.status;
    }
}

TEST(Conversation, FailuresAreJsonObjectsToo) {
    Conversation talk;
    talk.Hold({"value", "59"}, {{kPortMissing, {}}}, true);
    const Json object = Json::parse(talk.out.str());
    EXPECT_EQ(object["code"], "JElV");
    EXPECT_EQ(object["error"], "no-driver");
    EXPECT_THAT(object["message"], HasSubstr("no driver runs"));
}

TEST(Conversation, RawRepliesOfUnknownCodesAreHex) {
    Conversation talk;
    EXPECT_EQ(talk.Hold({"request", "ABCD"}, {{kDelivered, {0xAB, 0x01}}}), ExitCode::ok);
    EXPECT_EQ(talk.out.str(), "ab01\n");
    Conversation silent;
    EXPECT_EQ(silent.Hold({"request", "ABCD"}, {{kDelivered, {}}}), ExitCode::ok);
}

TEST(Conversation, RawRepliesOfKnownCodesAreDecoded) {
    Conversation talk;
    EXPECT_EQ(talk.Hold({"request", "JGlM"}, {{kDelivered, Bytes(8)}}), ExitCode::ok);
    EXPECT_EQ(talk.out.str(), "0,0\n");
}

TEST(Conversation, AFailedStepOfADragStillLetsTheButtonGo) {
    Conversation talk;
    EXPECT_EQ(talk.Hold({"drag", "0,0", "9,9"}, {{kDelivered, {}}, {-2, {}}, {kDelivered, {}}}),
              ExitCode::timeOut);
    EXPECT_THAT(talk.sent, ElementsAre("JPMS", "JPMC", "JPME"));
}

TEST(Conversation, AKeyWhosePressMayHaveArrivedIsLetGo) {
    Conversation talk;
    EXPECT_EQ(talk.Hold({"keystroke", "49"}, {{-2, {}}}), ExitCode::timeOut);
    EXPECT_EQ(talk.sent.size(), 2U);
}

TEST(Conversation, WithoutADriverNothingMoreIsTried) {
    Conversation talk;
    EXPECT_EQ(talk.Hold({"keystroke", "49"}, {{kPortMissing, {}}}), ExitCode::noDriver);
    EXPECT_EQ(talk.sent.size(), 1U);
}

TEST(Conversation, AnInterruptedDragStopsAndLetsTheButtonGo) {
    Conversation talk;
    talk.interruptAfter = 2;
    EXPECT_EQ(talk.Hold({"drag", "0,0", "9,9"}, {{kDelivered, {}}}), ExitCode::interrupted);
    EXPECT_THAT(talk.sent, ElementsAre("JPMS", "JPMC", "JPME"));
}

}  // namespace
}  // namespace krt9ctl
