// Bodies that do not hold their record: every request, at every length.

#include <ApplicationServices/ApplicationServices.h>

#include <ostream>

#include "platform/DesktopLink/Transport.h"
#include "protocol/MessageCodes.h"
#include "tests/unit/protocol/DispatcherTest.h"

namespace {

using platform_testing::LogLine;
using testing::ElementsAre;
using testing::IsEmpty;

struct Sample {
    const char* code;
    bool emptyIsSilent;  // the request's guard stops an empty body without a word
    Bytes body;          // one complete body that would be acted upon
    unsigned int smallest;

    SInt32 Code() const {
        const char text[5] = {code[0], code[1], code[2], code[3], 0};
        return FourCharacterCode(text);
    }
};

void PrintTo(const Sample& sample, std::ostream* out) {
    *out << sample.code;
}

Bytes OneTarget() {
    return Integers({1}) + Text("Board") + Integers({5}) + Units("Board") +
           Integers({1, 2, 3, 1, 1}) + Text("Sub") + Integers({3}) + Units("Sub");
}

const Sample kSamples[] = {
    {"JAcF", true, Integers({1, 1, 1}), 12},
    {"JBtP", true, Integers({59}), 4},
    {"JCPK", true, Integers({0x31, 0x100, 1}), 12},
    {"JEPp", true, Integers({59}), 4},
    {"JESI", true, Integers({60}), 4},
    {"JElP", true, Integers({59}), 4},
    {"JElV", true, Integers({59}), 4},
    {"JGRV", false, Integers({62}), 4},
    {"JPMC", true, Integers({1, 2, 0, 1}), 16},
    {"JPME", true, Integers({1, 2, 0, 1}), 16},
    {"JPMS", true, Integers({1, 2, 0, 1}), 16},
    {"JSIS", false, Integers({60, 5}), 8},
    {"JSRV", false, Integers({62, 2}), 8},
    {"JTWP", false, OneTarget(), 4},
    {"JWiP", false, Integers({1}) + Text("Board"), 5},
};

class HostileBody : public DispatcherTest, public testing::WithParamInterface<Sample> {
  protected:
    LogLine Refusal(std::size_t length) const {
        return {LogLine::Log::system, 0,
                "request '" + std::string(GetParam().code) + "' refused: its body of " +
                    std::to_string(length) + " bytes is not one complete record (at least " +
                    std::to_string(GetParam().smallest) + " bytes)\n"};
    }
};

class HostileCounts : public DispatcherTest {};

INSTANTIATE_TEST_SUITE_P(OfEveryRequest, HostileBody, testing::ValuesIn(kSamples),
                         [](const auto& info) { return std::string(info.param.code); });

}  // namespace

TEST_P(HostileBody, OfEveryShorterLengthIsRefusedWithOneLineNoReplyAndNoOperation) {
    const Sample& sample = GetParam();
    const unsigned long before = desktop_link::ExchangeCount();
    for (std::size_t length = 1; length < sample.body.size(); ++length) {
        log_.Clear();
        const Bytes body(sample.body.begin(), sample.body.begin() + static_cast<long>(length));
        EXPECT_EQ(Ask(sample.Code(), body), std::nullopt) << length << " bytes";
        EXPECT_THAT(log_.Lines(), ElementsAre(Refusal(length)));
    }
    EXPECT_EQ(desktop_link::ExchangeCount(), before) << "no operation";
    EXPECT_FALSE(DriverInspector::ObserveClipSelection(Driver()));
    EXPECT_FALSE(DriverInspector::ObserveTimelineTimecode(Driver()));
}

TEST_P(HostileBody, EmptyOrAbsentIsStoppedByTheGuardOrRefused) {
    const Sample& sample = GetParam();
    const unsigned long before = desktop_link::ExchangeCount();
    for (const bool absent : {false, true}) {
        log_.Clear();
        EXPECT_EQ(absent ? AskWithoutBody(sample.Code()) : Ask(sample.Code(), Bytes()),
                  std::nullopt);
        if (sample.emptyIsSilent) {
            EXPECT_THAT(log_.Lines(), IsEmpty());
        } else {
            EXPECT_THAT(log_.Lines(), ElementsAre(Refusal(0)));
        }
    }
    EXPECT_EQ(desktop_link::ExchangeCount(), before) << "no operation";
}

TEST_P(HostileBody, CompleteOneIsActedUponAndSoIsALongerOne) {
    const Sample& sample = GetParam();
    for (const Bytes& rest : {Bytes(), Bytes(100, 0xFF)}) {
        const unsigned long before = desktop_link::ExchangeCount();
        Ask(sample.Code(), sample.body + rest);
        EXPECT_THAT(log_.SystemTexts(), IsEmpty());
        if (sample.Code() != kJAcF) {  // switches observation on, which asks the desktop later
            EXPECT_GT(desktop_link::ExchangeCount(), before);
        }
    }
}

TEST_F(HostileCounts, FourBillionTargetsAreRefusedWithOneLine) {
    EXPECT_EQ(Ask(kJTWP, Integers({0xFFFFFFFF})), std::nullopt);
    EXPECT_EQ(Ask(kJTWP, Integers({0xFFFFFFFF}) + OneTarget()), std::nullopt);
    EXPECT_THAT(log_.SystemTexts(), testing::SizeIs(2));
}

TEST_F(HostileCounts, CompleteBodyOfHundredsOfThousandsOfTinyTargetsIsRefusedWithOneLine) {
    constexpr unsigned int count = 600000;
    const unsigned long before = desktop_link::ExchangeCount();
    EXPECT_EQ(Ask(kJTWP, Integers({count}) + Bytes(std::size_t{25} * count, 0)), std::nullopt);
    EXPECT_EQ(desktop_link::ExchangeCount(), before) << "no operation";
    EXPECT_THAT(log_.SystemTexts(), testing::SizeIs(1));
}

TEST_F(HostileCounts, NameWithoutTerminatorIsRefusedWithOneLine) {
    EXPECT_EQ(Ask(kJWiP, Integers({1}) + Bytes(100, 'B')), std::nullopt);
    EXPECT_EQ(Ask(kJTWP, Integers({1}) + Bytes(100, 'B')), std::nullopt);
    EXPECT_THAT(log_.SystemTexts(), testing::SizeIs(2));
}

TEST_F(HostileCounts, NamesBeyondTheirFieldsAreRefusedWithOneLine) {
    const Bytes rest = Integers({0, 0, 0, 0, 0});
    EXPECT_EQ(Ask(kJTWP, Integers({1}) + Text(std::string(256, 'B')) + Integers({0}) + rest),
              std::nullopt);
    EXPECT_EQ(Ask(kJTWP, Integers({1}) + Text("B") + Integers({1025}) + Bytes(2050, 0) + rest),
              std::nullopt);
    EXPECT_THAT(log_.SystemTexts(), testing::SizeIs(2));
}

TEST_F(HostileCounts, WindowNameMayBeAnyTextAtAll) {
    for (const std::string& name : {std::string("\xFF\xFE\x80", 3), std::string(100000, 'x')}) {
        EXPECT_EQ(Ask(kJWiP, Integers({0}) + Text(name)), std::nullopt);
        EXPECT_EQ(Ask(kJWiP, Integers({1}) + Text(name)), std::nullopt);
    }
    EXPECT_THAT(log_.Lines(), IsEmpty());
}
