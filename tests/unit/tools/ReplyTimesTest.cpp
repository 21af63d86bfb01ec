// Times of the driver's replies, summarized.
#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "VEKCommon/MessageCodes.h"
#include "tools/ReplyTimes.h"

namespace krt9ctl {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

std::vector<Milliseconds> UpTo(int largest) {
    std::vector<Milliseconds> times;
    for (int time = largest; time > 0; --time) {
        times.emplace_back(time);
    }
    return times;
}

TEST(TimeSummary, OfOneTimeIsThatTime) {
    const TimeSummary summary = Summarize({Milliseconds(7)});
    EXPECT_EQ(summary.shortest.count(), 7);
    EXPECT_EQ(summary.median.count(), 7);
    EXPECT_EQ(summary.ninetyNinth.count(), 7);
}

TEST(TimeSummary, HasItsMedianInTheMiddleOrBetweenTheMiddleTwo) {
    EXPECT_EQ(Summarize(UpTo(5)).median.count(), 3);
    EXPECT_EQ(Summarize(UpTo(6)).median.count(), 3.5);
}

TEST(TimeSummary, LeavesOneOfAHundredAboveTheNinetyNinth) {
    EXPECT_EQ(Summarize(UpTo(99)).ninetyNinth.count(), 99);
    EXPECT_EQ(Summarize(UpTo(100)).ninetyNinth.count(), 99);
    EXPECT_EQ(Summarize(UpTo(101)).ninetyNinth.count(), 100);
    EXPECT_EQ(Summarize(UpTo(200)).ninetyNinth.count(), 198);
    EXPECT_EQ(Summarize(UpTo(200)).shortest.count(), 1);
}

struct Measured {
    ExitCode code;
    std::string out, err;
    int sent = 0;
};

// A plan of four requests, of which the one after `good` gets that status, and which a signal stops
// before the one after `beforeSignal`.
Measured Measure(bool json, int good, std::int32_t status, int beforeSignal) {
    Measured measured{};
    std::ostringstream out, err;
    Output output({out, err}, json);
    measured.code = MeasureReplies(
        Plan(4, Request{kJPth, {}}),
        [&](const Request&) {
            return Answer{measured.sent++ < good ? kCFMessagePortSuccess : status, {}};
        },
        [&] { return measured.sent < beforeSignal ? ExitCode::ok : ExitCode::interrupted; },
        output);
    measured.out = out.str();
    measured.err = err.str();
    return measured;
}

TEST(ReplyTimes, ArePrintedInPlaceOfTheReplies) {
    const Measured people = Measure(false, 4, 0, 4);
    EXPECT_EQ(people.code, ExitCode::ok);
    EXPECT_THAT(people.out, MatchesRegex("4 replies: min [0-9]+\\.[0-9]+ ms, median "
                                         "[0-9]+\\.[0-9]+ ms, p99 [0-9]+\\.[0-9]+ ms\n"));
    const Json json = Json::parse(Measure(true, 4, 0, 4).out);
    EXPECT_EQ(json["code"], "JPth");
    EXPECT_EQ(json["count"], 4);
    EXPECT_LE(json["milliseconds"]["min"], json["milliseconds"]["median"]);
    EXPECT_LE(json["milliseconds"]["median"], json["milliseconds"]["p99"]);
}

TEST(ReplyTimes, EndWithTheFirstFailureAndAreNotPrintedThen) {
    const Measured measured = Measure(true, 2, kCFMessagePortReceiveTimeout, 4);
    EXPECT_EQ(measured.code, ExitCode::timeOut);
    EXPECT_EQ(measured.sent, 3);
    EXPECT_EQ(Json::parse(measured.out)["error"], "time-out");
    EXPECT_THAT(measured.err, HasSubstr("did not answer in time"));
}

TEST(ReplyTimes, OfASeriesThatASignalEndsAreThoseMeasuredUntilThen) {
    const Measured measured = Measure(false, 4, 0, 3);
    EXPECT_EQ(measured.code, ExitCode::interrupted);
    EXPECT_THAT(measured.out, HasSubstr("3 replies: "));
    EXPECT_THAT(measured.err, HasSubstr("stopped by SIGINT"));
    EXPECT_EQ(Measure(false, 4, 0, 0).out, "");
}

}  // namespace
}  // namespace krt9ctl
