// Bodies that do not hold their record: every request, at every length.

#include <ApplicationServices/ApplicationServices.h>

#include <ostream>

#include "VEKCommon/MessageCodes.h"
#include "platform/DesktopLink/Transport.h"
#include "tests/unit/protocol/DispatcherTest.h"

namespace {

using platform_testing::LogLine;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

struct Sample {
    const char* code;
    bool emptyIsSilent;  // an empty body is ignored without a log line
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

LogLine Refusal(const std::string& code, std::size_t length, const std::string& reason) {
    return {LogLine::Log::system, 0,
            "request '" + code + "' refused: its body of " + std::to_string(length) + " bytes " +
                reason + "\n"};
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
    // The line of a body that is shorter than any body of its request.
    LogLine TooShort(std::size_t length) const {
        return Refusal(
            GetParam().code, length,
            "is too short, at least " + std::to_string(GetParam().smallest) + " are needed");
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
        if (length < sample.smallest) {
            EXPECT_THAT(log_.Lines(), ElementsAre(TooShort(length)));
        } else {
            EXPECT_THAT(log_.Lines(), SizeIs(1)) << length << " bytes; see RefusalLine";
        }
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
            EXPECT_THAT(log_.Lines(), ElementsAre(TooShort(0)));
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

// --- What the line says --------------------------------------------------------------------------

class RefusalLine : public DispatcherTest {
  protected:
    void Expect(SInt32 code, const Bytes& body, const std::string& reason) {
        log_.Clear();
        EXPECT_EQ(Ask(code, body), std::nullopt);
        const std::string name = code == kJTWP ? "JTWP" : "JWiP";
        EXPECT_THAT(log_.Lines(), ElementsAre(Refusal(name, body.size(), reason)));
    }
};

TEST_F(RefusalLine, SaysThatABodyEndsBeforeItsRecordAndHowManyBytesWouldDo) {
    Expect(kJWiP, Integers({1}), "is too short, at least 5 are needed");
    Expect(kJTWP, Bytes{1, 0, 0}, "is too short, at least 4 are needed");
    const Bytes firstName = Integers({1}) + Text("Board") + Integers({5}) + Units("Board");
    Expect(kJTWP, firstName + Integers({1, 2}), "is too short, at least 40 are needed");
    Expect(kJTWP, firstName + Integers({1, 2, 3, 4}), "is too short, at least 44 are needed");
    Expect(kJTWP, firstName + Integers({1, 2, 3, 4, 1}), "is too short, at least 45 are needed");
    Expect(kJTWP, firstName + Integers({1, 2, 3, 4, 1}) + Text("Sub"),
           "is too short, at least 52 are needed");
}

TEST_F(RefusalLine, SaysThatATextHasNoTerminator) {
    Expect(kJWiP, Integers({1}) + Bytes(100, 'B'), "holds a text without terminator");
    Expect(kJTWP, Integers({1}) + Bytes(100, 'B'), "holds a text without terminator");
    Expect(kJTWP, Integers({1}) + Text("B") + Integers({0, 0, 0, 0, 0, 1}) + Bytes(100, 'B'),
           "holds a text without terminator");
}

TEST_F(RefusalLine, SaysThatANameIsTooLong) {
    const Bytes rest = Integers({0, 0, 0, 0, 0});
    Expect(kJTWP, Integers({1}) + Text(std::string(256, 'B')) + Integers({0}) + rest,
           "holds a name of 256 bytes, of which 255 fit");
    Expect(kJTWP, Integers({1}) + Text("B") + Integers({1025}) + Bytes(2050, 0) + rest,
           "holds a name of 1025 UTF-16 units, of which 1024 fit");
}

TEST_F(RefusalLine, SaysThatACountGoesBeyondTheBody) {
    Expect(kJTWP, Integers({0xFFFFFFFF}),
           "does not hold its count of 4294967295, at least 107374182379 are needed");
    const Bytes target = OneTarget();
    Expect(kJTWP, Integers({2}) + Bytes(target.begin() + 4, target.begin() + 44),
           "does not hold its count of 2, at least 54 are needed");
    Expect(kJTWP, Integers({1}) + Text("B") + Integers({0x80000000}) + Bytes(64, 0),
           "does not hold its count of 2147483648, at least 4294967306 are needed");
}

// --- Bodies that are unusual but complete --------------------------------------------------------

TEST_F(HostileCounts, CompleteBodyOfHundredsOfThousandsOfTinyTargetsIsServed) {
    constexpr unsigned int count = 300000;
    Translate({{"CB", "Color Board"}});
    const Bytes none(std::size_t{25} * (count - 1), 0);
    const Bytes last = Text("CB") + Integers({0, 0, 0, 0, 0, 0});
    EXPECT_EQ(Ask(kJTWP, Integers({count}) + none + last), Integers({count - 1, 50, 60, 300, 200}));
    EXPECT_THAT(log_.Lines(), IsEmpty());
}

TEST_F(HostileCounts, WindowNameMayBeAnyTextAtAll) {
    for (const std::string& name : {std::string("\xFF\xFE\x80", 3), std::string(100000, 'x')}) {
        EXPECT_EQ(Ask(kJWiP, Integers({0}) + Text(name)), std::nullopt);
        EXPECT_EQ(Ask(kJWiP, Integers({1}) + Text(name)), std::nullopt);
    }
    EXPECT_THAT(log_.Lines(), IsEmpty());
}
