#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "VEKCommon/MessageCodes.h"
#include "tests/unit/tools/PlanOf.h"
#include "tools/Conversation.h"

namespace krt9ctl {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// Each request gets the next of the answers that the test prepared; the last one is repeated.
struct Conversation {
    ExitCode Hold(const std::vector<std::string>& words, std::vector<Answer> answers,
                  bool json = false) {
        Output output({out, err}, json);
        return Converse(
            PlanOf(words),
            [&](const Request& request) {
                sent.push_back(FormatCode(request.code));
                bodies.push_back(FormatHex(request.body));
                return answers[std::min(sent.size(), answers.size()) - 1];
            },
            [this] { return sent.size() >= interruptAfter ? signal : ExitCode::ok; }, output);
    }

    std::ostringstream out, err;
    std::vector<std::string> sent, bodies;
    ExitCode signal = ExitCode::interrupted;
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
    EXPECT_THAT(talk.err.str(), HasSubstr("'JElV': the driver sent no reply"));
}

TEST(Conversation, AReplyOfAnotherLengthIsABadReplyAndShown) {
    Conversation talk;
    EXPECT_EQ(talk.Hold({"value", "59"}, {{kDelivered, {1, 2}}}), ExitCode::badReply);
    EXPECT_THAT(talk.err.str(), HasSubstr("2 bytes instead of 4: 0102"));
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
        {-4, ExitCode::transport, "could not be delivered"},
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
    EXPECT_THAT(talk.sent, ElementsAre("JPMS", "JPMC", "JGlM", "JPME"));
}

TEST(Conversation, AnInterruptedDragLetsTheButtonGoWhereThePointerIs) {
    Conversation talk;
    talk.interruptAfter = 2;
    const Answer nothing{kDelivered, {}};
    talk.Hold({"drag", "0,0", "90,90", "--option"},
              {nothing, nothing, {kDelivered, {7, 0, 0, 0, 5, 0, 0, 0}}, nothing});
    EXPECT_EQ(talk.bodies.back(), "07000000050000000008000001000000");
}

TEST(Conversation, APointerLeftOfTheMainScreenIsTakenToItsEdge) {
    Conversation talk;
    talk.interruptAfter = 2;
    const Answer nothing{kDelivered, {}};
    talk.Hold({"drag", "0,0", "90,90"},
              {nothing, nothing, {kDelivered, {0xFE, 0xFF, 0xFF, 0xFF, 5, 0, 0, 0}}, nothing});
    EXPECT_EQ(talk.bodies.back(), "00000000050000000000000001000000");
}

TEST(Conversation, WithoutThePointersPlaceTheLastStepsPointIsTaken) {
    for (const Bytes& pointer : {Bytes{}, Bytes{1, 2, 3}}) {
        Conversation talk;
        talk.interruptAfter = 3;
        const Answer nothing{kDelivered, {}};
        talk.Hold({"drag", "0,0", "90,90"},
                  {nothing, nothing, nothing, {kDelivered, pointer}, nothing});
        EXPECT_THAT(talk.sent, ElementsAre("JPMS", "JPMC", "JPMC", "JGlM", "JPME"));
        EXPECT_EQ(talk.bodies.back(), "12000000120000000000000001000000");
    }
}

TEST(Conversation, ADriverThatDoesNotReplyIsNotAskedForThePointer) {
    Conversation talk;
    talk.Hold({"drag", "0,0", "90,90"}, {{kDelivered, {}}, {-2, {}}, {kDelivered, {}}});
    EXPECT_THAT(talk.sent, ElementsAre("JPMS", "JPMC", "JPME"));
    EXPECT_EQ(talk.bodies.back(), "09000000090000000000000001000000");
}

TEST(Conversation, EachSignalHasItsExitCodeAndItsObject) {
    const struct {
        ExitCode code;
        const char* name;
        const char* signal;
    } cases[] = {{ExitCode::interrupted, "interrupted", "SIGINT"},
                 {ExitCode::terminated, "terminated", "SIGTERM"},
                 {ExitCode::hungUp, "hung-up", "SIGHUP"}};
    for (const auto& each : cases) {
        Conversation talk;
        talk.interruptAfter = 0;
        talk.signal = each.code;
        EXPECT_EQ(talk.Hold({"keystroke", "49"}, {{kDelivered, {}}}, true), each.code);
        const Json object = Json::parse(talk.out.str());
        EXPECT_EQ(object["error"], each.name);
        EXPECT_THAT(object["message"], HasSubstr(each.signal));
        EXPECT_THAT(talk.sent, ElementsAre());
    }
}

TEST(Conversation, OutputThatCannotBeWrittenStopsADragAndLetsTheButtonGo) {
    Conversation talk;
    talk.out.setstate(std::ios::badbit);
    EXPECT_NE(talk.Hold({"drag", "0,0", "9,9"}, {{kDelivered, {}}}, true), ExitCode::ok);
    EXPECT_THAT(talk.sent, ElementsAre("JPMS", "JGlM", "JPME"));
    EXPECT_THAT(talk.err.str(), HasSubstr("the output cannot be written"));
}

TEST(Conversation, ATimeOutSaysThatTheRequestMayStillTakeEffect) {
    for (const std::int32_t status : {-1, -2}) {
        Conversation talk;
        EXPECT_EQ(talk.Hold({"press", "59"}, {{status, {}}}), ExitCode::timeOut);
        EXPECT_THAT(talk.err.str(), HasSubstr("it may still take effect"));
    }
}

}  // namespace
}  // namespace krt9ctl
