// Counts, lengths and texts inside a body at their bounds and beyond, as the message port hands
// them to the driver: what cannot be a record costs one log line and nothing else.

#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "VEKCommon/MessageCodes.h"
#include "platform/DesktopLink/Transport.h"
#include "tests/adversary/AllocationMeter.h"
#include "tests/support/LeakAllowance.h"
#include "tests/unit/protocol/DispatcherTest.h"

namespace {

using adversary::AllocationMeter;
using adversary::Allocations;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

struct Body {
    std::string name;
    SInt32 code;
    Bytes bytes;
};

void PrintTo(const Body& body, std::ostream* stream) {
    *stream << body.name;
}

// A name of a candidate in the three fields it has; the units' count may lie about them.
Bytes Name(const std::string& name, unsigned int unitCount, std::size_t units) {
    return Text(name) + Integers({unitCount}) + Bytes(2 * units, 0);
}
Bytes Name(const std::string& name) {
    return Name(name, 0, 0);
}
Bytes Candidate(const Bytes& name) {
    return name + Integers({0, 0, 0, 0, 0});
}
Bytes Candidate(const Bytes& name, const Bytes& subWindowName) {
    return name + Integers({0, 0, 0, 0, 1}) + subWindowName;
}
Bytes Unterminated(std::size_t length) {
    return Bytes(length, 'n');
}
std::string Long(std::size_t length) {
    return std::string(length, 'n');
}

Bytes Targets(unsigned int count, const Bytes& candidates) {
    return Integers({count}) + candidates;
}

constexpr std::size_t kSmallestCandidate = 25;  // bytes: no name

Bytes Repeated(unsigned int count, const Bytes& candidate) {
    Bytes all;
    for (unsigned int i = 0; i < count; ++i) {
        all.insert(all.end(), candidate.begin(), candidate.end());
    }
    return all;
}

const Bytes kOrdinary = Candidate(Name("Board", 5, 5));

std::vector<Body> RefusedBodies() {
    std::vector<Body> bodies = {
        {"ACountOf4294967295Alone", kJTWP, Targets(0xFFFFFFFF, {})},
        {"ACountOf4294967295BeforeOneCandidate", kJTWP, Targets(0xFFFFFFFF, kOrdinary)},
        {"ACountOf2147483648", kJTWP, Targets(0x80000000, kOrdinary)},
        {"OneCandidateMoreThanThereAre", kJTWP, Targets(2, kOrdinary)},
        {"AWindowNameWithoutTerminator", kJWiP, Integers({1}) + Unterminated(10)},
        {"AWindowNameOfAMillionBytesWithoutTerminator", kJWiP,
         Integers({1}) + Unterminated(1000000)},
    };
    // The same of either name, in the first candidate and in a later one.
    struct Place {
        std::string name;
        Bytes (*request)(const Bytes& nameInPlace);
    };
    const Place places[] = {
        {"TheName", [](const Bytes& name) { return Targets(1, Candidate(name)); }},
        {"TheSubWindowName",
         [](const Bytes& name) { return Targets(1, Candidate(Name("Board"), name)); }},
        {"TheNameOfTheThird",
         [](const Bytes& name) { return Targets(3, kOrdinary + kOrdinary + Candidate(name)); }},
        {"TheSubWindowNameOfTheThird",
         [](const Bytes& name) {
             return Targets(3, kOrdinary + kOrdinary + Candidate(Name("Board"), name));
         }},
    };
    for (const Place& place : places) {
        const auto add = [&](const std::string& fault, const Bytes& name) {
            bodies.push_back({fault + "In" + place.name, kJTWP, place.request(name)});
        };
        add("256Bytes", Name(Long(256)));
        add("AMillionBytes", Name(Long(1000000)));
        add("1025Units", Name("Absent", 1025, 1025));
        add("UnitsThatWrapToNothing", Name("Absent", 0x80000000, 0));
        add("UnitsThatWrapToTheRest", Name("Absent", 0x80000000 + 10, 10));
        add("4294967295Units", Name("Absent", 0xFFFFFFFF, 100));
        add("1024UnitsOfWhich1000AreThere", Name("Absent", 1024, 1000));
        add("NoTerminator", Unterminated(200));
        // The numbers behind the name hold zeros, which would end it.
        bodies.back().bytes.resize(bodies.back().bytes.size() - 20);
    }
    return bodies;
}

std::vector<Body> AcceptedBodies() {
    std::vector<Body> bodies = {
        {"NoCandidate", kJTWP, Targets(0, {})},
        {"ANameOf255Bytes", kJTWP, Targets(1, Candidate(Name(Long(255))))},
        {"ASubWindowNameOf255Bytes", kJTWP, Targets(1, Candidate(Name("Board"), Name(Long(255))))},
        {"1024Units", kJTWP, Targets(1, Candidate(Name("Absent", 1024, 1024)))},
        {"1024UnitsOfASubWindow", kJTWP,
         Targets(1, Candidate(Name("Board"), Name("Absent", 1024, 1024)))},
        {"EverythingAtItsBoundTwice", kJTWP,
         Targets(2, Candidate(Name(Long(255), 1024, 1024), Name(Long(255), 1024, 1024)) +
                        Candidate(Name(Long(255), 1024, 1024), Name(Long(255), 1024, 1024)))},
        {"TwentyThousandCandidatesWithoutNames", kJTWP,
         Targets(20000, Bytes(20000 * kSmallestCandidate, 0))},
        {"TwentyThousandCandidatesOfOneByte", kJTWP,
         Targets(20000, Repeated(20000, Candidate(Name("x"))))},
        {"TwentyThousandCandidatesWithSubWindowsWithoutNames", kJTWP,
         Targets(20000, Repeated(20000, Candidate(Name(""), Name(""))))},
        {"AThousandCandidatesOfTheLongestNames", kJTWP,
         Targets(1000, Repeated(1000, Candidate(Name(Long(255), 1024, 1024),
                                                Name(Long(255), 1024, 1024))))},
        {"AnEmptyWindowName", kJWiP, Integers({1}) + Text("")},
        {"AWindowNameOf255Bytes", kJWiP, Integers({1}) + Text(Long(255))},
        {"AWindowNameOf256Bytes", kJWiP, Integers({1}) + Text(Long(256))},
        {"AWindowNameOfAMillionBytes", kJWiP, Integers({1}) + Text(Long(1000000))},
    };
    return bodies;
}

// One path of a request through the driver each, with a body that a megabyte of anything follows.
std::vector<Body> LongBodies() {
    const Bytes rest(1000000, 0xFF);
    return {
        {"UnknownCode", FourCharacterCode("ABCD"), rest},
        {"NoOperation", kJPth, rest},
        {"NoBody", kJGlM, rest},
        {"Element", kJElV, Integers({59}) + rest},
        {"ElementThatIsNotThere", kJElV, Integers({1234}) + rest},
        {"Press", kJBtP, Integers({59}) + rest},
        {"TwoIntegers", kJSIS, Integers({60, 5}) + rest},
        {"FailedTwoIntegers", kJSRV, Integers({1234, 5}) + rest},
        {"ThreeIntegers", kJAcF, Integers({1, 0, 0}) + rest},
        {"Keystroke", kJCPK, Integers({0x31, 0, 0}) + rest},
        {"Mouse", kJPMC, Integers({1, 2, 0, 0}) + rest},
        {"Window", kJWiP, Integers({1}) + Text("Board") + rest},
        {"WindowThatIsNotThere", kJWiP, Integers({1}) + Text("Absent") + rest},
        {"WindowOfALongName", kJWiP, Integers({1}) + Text(Long(1000000))},
        {"TargetWindow", kJTWP, Targets(1, Candidate(Name("Board"))) + rest},
        {"ManyTargetWindows", kJTWP, Targets(40000, Bytes(40000 * kSmallestCandidate, 0))},
        {"RefusedWindow", kJWiP, Integers({1}) + rest},
        {"RefusedTargetWindows", kJTWP, Integers({0xFFFFFFFF}) + rest},
    };
}

class LongBody : public DispatcherTest, public testing::WithParamInterface<Body> {};
class RefusedBody : public DispatcherTest, public testing::WithParamInterface<Body> {};
class AcceptedBody : public DispatcherTest, public testing::WithParamInterface<Body> {};

const auto kNameOfBody = [](const auto& info) { return info.param.name; };
INSTANTIATE_TEST_SUITE_P(Of, LongBody, testing::ValuesIn(LongBodies()), kNameOfBody);
INSTANTIATE_TEST_SUITE_P(With, RefusedBody, testing::ValuesIn(RefusedBodies()), kNameOfBody);
INSTANTIATE_TEST_SUITE_P(With, AcceptedBody, testing::ValuesIn(AcceptedBodies()), kNameOfBody);

// What reading a body may take besides the port's data and the driver's copy of it: the log line,
// the pool, the capture of lines.
constexpr std::size_t kSmallChange = 4096;  // bytes

struct Cost {
    std::optional<Bytes> reply;
    Allocations allocations;
    unsigned long exchanges;
};

template <typename Ask>
Cost CostOf(Ask ask) {
    const unsigned long before = desktop_link::ExchangeCount();
    const AllocationMeter meter;
    std::optional<Bytes> reply = ask();
    return {std::move(reply), meter.SoFar(), desktop_link::ExchangeCount() - before};
}

}  // namespace

TEST_P(RefusedBody, CostsOneLineAndNoMoreMemoryThanItselfAndAsksTheDesktopNothing) {
    const Body& body = GetParam();
    Ask(body.code, body.bytes);  // fills the caches of the runtime
    log_.Clear();
    const Cost cost = CostOf([&] { return Ask(body.code, body.bytes); });
    EXPECT_EQ(cost.reply, std::nullopt);
    EXPECT_EQ(cost.exchanges, 0U) << "no operation";
    ASSERT_THAT(log_.Lines(), SizeIs(1));
    EXPECT_THAT(log_.SystemTexts(), ElementsAre(StartsWith("request '")));
    EXPECT_LE(cost.allocations.largest, body.bytes.size() + kSmallChange);
    EXPECT_LE(cost.allocations.total, 2 * body.bytes.size() + kSmallChange);
}

TEST_P(AcceptedBody, IsActedUponWithoutALine) {
    const Body& body = GetParam();
    const Cost cost = CostOf([&] { return Ask(body.code, body.bytes); });
    EXPECT_EQ(cost.reply, std::nullopt) << "no window has that name";
    EXPECT_GT(cost.exchanges, 0U);
    EXPECT_THAT(log_.Lines(), IsEmpty());
}

// Of candidates, one body is in the port's data, one in the driver's copy of it, and one in the
// record's own copies. Foundation makes two more of a window's name, of two bytes a character each.
TEST_P(AcceptedBody, TakesMemoryInProportionToItself) {
    constexpr std::size_t kOfTheLookup = 8 << 10;  // bytes: the desktop's replies and titles
    const Body& body = GetParam();
    const std::size_t factor = body.code == kJTWP ? 3 : 6;
    Ask(body.code, body.bytes);  // fills the caches of the runtime
    const Cost cost = CostOf([&] { return Ask(body.code, body.bytes); });
    EXPECT_LE(cost.allocations.peak, factor * body.bytes.size() + kOfTheLookup);
}

// The driver's copy of a body would be a megabyte, and so would the record's.
TEST_P(LongBody, IsFreedWithEverythingMadeOfItWhenTheRequestIsOver) {
    constexpr long kSmallLeftover = 64 << 10;  // bytes: caches of the runtime, the log's capture
    const Body& body = GetParam();
    Ask(body.code, body.bytes);
    const AllocationMeter meter;
    Ask(body.code, body.bytes);
    EXPECT_GT(meter.SoFar().peak, body.bytes.size()) << "it was copied";
    EXPECT_LT(meter.SoFar().live, kSmallLeftover);
}

TEST_P(LongBody, IsFreedWhenAnExceptionPassesThroughTheRequest) {
    constexpr long kOfThePools = 256 << 10;  // bytes: what was under way in Foundation's hands
    const Body& body = GetParam();
    const test_support::LeakAllowance stoppedHalfWay;
    desktop_->onRead = [](const auto&, const auto&) { throw std::runtime_error("adversary"); };
    const auto ask = [&] {
        try {
            Ask(body.code, body.bytes);
        } catch (const std::runtime_error&) {
        }
    };
    ask();
    const AllocationMeter meter;
    ask();
    EXPECT_LT(meter.SoFar().live, kOfThePools);
    desktop_->onRead = nullptr;
}

TEST_P(AcceptedBody, CutByOneByteIsRefused) {
    const Body& body = GetParam();
    const Bytes cut(body.bytes.begin(), body.bytes.end() - 1);
    const Cost cost = CostOf([&] { return Ask(body.code, cut); });
    EXPECT_EQ(cost.reply, std::nullopt);
    EXPECT_EQ(cost.exchanges, 0U);
    EXPECT_THAT(log_.SystemTexts(), SizeIs(1));
}
