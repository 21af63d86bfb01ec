// press, set and select with --expect, and the verbs wait: exit code 0 means that it happened.
#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "tests/unit/tools/PlanOf.h"

namespace krt9ctl {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

// Each request gets the next of the answers that the test prepared; the last one is repeated.
struct Errands {
    ExitCode Run(std::vector<std::string> words, std::vector<Answer> answers, bool json = false) {
        Output output({out, err}, json);
        return RunErrand(
            ErrandFor(std::move(words)),
            [&](const Request& request) {
                sent.push_back(FormatCode(request.code) + " " + FormatHex(request.body));
                return answers[std::min(sent.size(), answers.size()) - 1];
            },
            [this] { return sent.size() >= interruptAfter ? ExitCode::interrupted : ExitCode::ok; },
            output);
    }

    std::ostringstream out, err;
    std::vector<std::string> sent;
    std::size_t interruptAfter = 1000;
};

Answer Number(std::uint8_t number) {
    return {kCFMessagePortSuccess, {number, 0, 0, 0}};
}

const Answer kNoReply{kCFMessagePortSuccess, {}};
const Answer kTimeOut{kCFMessagePortReceiveTimeout, {}};

TEST(Expect, AfterAPressAsksForTheValueUntilItIsSo) {
    Errands errands;
    EXPECT_EQ(errands.Run({"press", "171", "--expect", "1"},
                          {Number(0), kNoReply, Number(0), kNoReply, Number(1)}),
              ExitCode::ok);
    EXPECT_THAT(errands.sent, ElementsAre("JElV ab000000", "JBtP ab000000", "JElV ab000000",
                                          "JElV ab000000", "JElV ab000000"));
    EXPECT_EQ(errands.out.str() + errands.err.str(), "");
}

TEST(Expect, TellsProgramsWhatItRead) {
    Errands errands;
    EXPECT_EQ(
        errands.Run({"press", "171", "--expect", "1"}, {Number(0), kNoReply, Number(1)}, true),
        ExitCode::ok);
    EXPECT_EQ(errands.out.str(),
              "{\"code\":\"JBtP\",\"delivered\":true}\n"
              "{\"code\":\"JElV\",\"element\":\"_NS:171\",\"value\":1}\n");
}

TEST(Expect, FailsWhenTheValueDoesNotComeInTime) {
    Errands errands;
    EXPECT_EQ(errands.Run({"press", "171", "--expect", "1", "--within", "0.01"},
                          {Number(0), kNoReply, Number(0)}),
              ExitCode::unmet);
    EXPECT_EQ(errands.err.str(),
              "krt9ctl: 'JElV': _NS:171 has the value 0 and not 1 after 0.01 s\n");
    Errands programs;
    EXPECT_EQ(programs.Run({"set", "5", "7", "--expect", "--within", "0.01"}, {kNoReply, Number(0)},
                           true),
              ExitCode::unmet);
    EXPECT_THAT(programs.out.str(),
                HasSubstr(R"({"code":"JESI","element":"_NS:5","value":0,"expected":7,)"
                          R"("error":"unmet",)"));
}

// Otherwise a press that does nothing would pass for one that worked.
TEST(Expect, PressesNothingWhenTheValueIsSoAlready) {
    Errands errands;
    EXPECT_EQ(errands.Run({"press", "171", "--expect", "1"}, {Number(1)}), ExitCode::unmet);
    EXPECT_THAT(errands.sent, ElementsAre("JElV ab000000"));
    EXPECT_THAT(errands.err.str(), HasSubstr("has the value 1 already"));
}

TEST(Expect, OfSetAndSelectIsMetByWhatWasSoBefore) {
    Errands set;
    EXPECT_EQ(set.Run({"set", "5", "7", "--expect"}, {kNoReply, Number(7)}), ExitCode::ok);
    EXPECT_THAT(set.sent, ElementsAre("JSIS 0500000007000000", "JESI 05000000"));
    Errands select;
    EXPECT_EQ(select.Run({"select", "5", "2", "--expect"}, {kNoReply, Number(2)}), ExitCode::ok);
    EXPECT_THAT(select.sent, ElementsAre("JSRV 0500000002000000", "JGRV 05000000"));
}

TEST(Expect, OfAControlThatTheDriverDoesNotFindSaysHowToLearnWhy) {
    Errands errands;
    EXPECT_EQ(errands.Run({"press", "171", "--expect", "1", "--within", "0.01"}, {kNoReply}),
              ExitCode::unmet);
    EXPECT_EQ(errands.err.str(),
              "krt9ctl: 'JElV': the driver gave no value of _NS:171 in 0.01 s; "
              "see krt9ctl why 171\n");
}

TEST(Expect, SendsNothingMoreWhenThereIsNoDriver) {
    Errands errands;
    EXPECT_EQ(errands.Run({"press", "171", "--expect", "1"}, {{kPortMissing, {}}}),
              ExitCode::noDriver);
    EXPECT_THAT(errands.sent, SizeIs(1));
}

TEST(Expect, WithinNeedsExpect) {
    EXPECT_EQ(ComplaintAbout({"press", "171", "--within", "1"}), "--within needs --expect");
}

TEST(Wait, AsksUntilItIsSo) {
    Errands errands;
    EXPECT_EQ(errands.Run({"wait", "value", "171", "1"}, {kNoReply, Number(0), Number(1)}),
              ExitCode::ok);
    EXPECT_THAT(errands.sent, SizeIs(3));
    Errands number;
    EXPECT_EQ(number.Run({"wait", "number", "42", "7"}, {Number(7)}), ExitCode::ok);
    EXPECT_THAT(number.sent, ElementsAre("JESI 2a000000"));
    Errands selected;
    EXPECT_EQ(selected.Run({"wait", "selected", "42", "2"}, {Number(2)}), ExitCode::ok);
    EXPECT_THAT(selected.sent, ElementsAre("JGRV 2a000000"));
}

TEST(Wait, HasAnExitCodeOfItsOwnWhenItIsNotSoInTime) {
    Errands errands;
    EXPECT_EQ(errands.Run({"wait", "value", "171", "1", "--for", "0.01"}, {Number(2)}),
              ExitCode::unmet);
    EXPECT_THAT(errands.err.str(), HasSubstr("_NS:171 has the value 2 and not 1 after 0.01 s"));
}

TEST(Wait, GoesOnWhileTheDriverIsBusy) {
    Errands errands;
    EXPECT_EQ(errands.Run({"wait", "value", "171", "1"}, {kTimeOut, kTimeOut, Number(1)}),
              ExitCode::ok);
    Errands busy;
    EXPECT_EQ(busy.Run({"wait", "value", "171", "1", "--for", "0.01"}, {kTimeOut}),
              ExitCode::timeOut);
}

TEST(Wait, EndsAtOnceWhenTheDriverIsGone) {
    Errands errands;
    EXPECT_EQ(errands.Run({"wait", "value", "171", "1", "--for", "3600"},
                          {Number(0), {kCFMessagePortBecameInvalidError, {}}}),
              ExitCode::transport);
    EXPECT_THAT(errands.sent, SizeIs(2));
}

TEST(Wait, EndsWithASignal) {
    Errands errands;
    errands.interruptAfter = 2;
    EXPECT_EQ(errands.Run({"wait", "value", "171", "1", "--for", "3600"}, {Number(0)}),
              ExitCode::interrupted);
    EXPECT_EQ(errands.err.str(), "krt9ctl: stopped by SIGINT\n");
}

}  // namespace
}  // namespace krt9ctl
