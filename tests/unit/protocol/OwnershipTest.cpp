// What a request leaves over once its reply is sent: nothing, but for the one operation that keeps
// what it found.

#include <stdexcept>

#include "VEKCommon/MessageCodes.h"
#include "platform/Testing/LiveObjects.h"
#include "tests/support/LeakAllowance.h"
#include "tests/support/LongForm.h"
#include "tests/unit/protocol/DispatcherTest.h"

namespace {

const int kRepetitions = test_support::Repetitions(200, 10'000);

class Ownership : public DispatcherTest {};

}  // namespace

TEST_F(Ownership, NoRequestLeavesAnObjectOver) {
    struct Request {
        SInt32 code;
        Bytes body;
    };
    const Request requests[] = {
        {kJAcF, Integers({1, 1, 1})},
        {kJBtP, Integers({59})},
        {kJCPK, Integers({0x31, 0x1B00, 1})},
        {kJEPp, Integers({59})},
        {kJESI, Integers({60})},
        {kJElP, Integers({59})},
        {kJElV, Integers({59})},
        {kJElV, Integers({1234})},
        {kJGRV, Integers({62})},
        {kJGRV, Integers({63})},
        {kJGlM, Bytes()},
        {kJObE, Bytes()},
        {kJObT, Bytes()},
        {kJPMS, Integers({1, 2, 0x0100, 1})},
        {kJPMC, Integers({3, 4, 0x0100, 1})},
        {kJPME, Integers({5, 6, 0x0100, 1})},
        {kJPth, Bytes()},
        {kJSIS, Integers({60, 5})},
        {kJStO, Bytes()},
        {kJTWP, Integers({1}) + Text("CB") + Integers({0, 0, 0, 0, 0, 0})},
        {kJWiP, Integers({1}) + Text("Board")},
        {kJXRs, Bytes()},
        {kJElV, Bytes({1, 2, 3})},
        {FourCharacterCode("ABCD"), Bytes()},
    };
    for (const Request& request : requests) {
        EXPECT_EQ(
            platform_testing::LeftOverBy([&] { Ask(request.code, request.body); }, kRepetitions),
            "")
            << "request 0x" << std::hex << request.code;
    }
}

TEST_F(Ownership, SelectingARadioButtonDeliberatelyKeepsTheGroupAndItsChildren) {
    // The array, the group and its three buttons; nothing that came with them on the way.
    const std::string arrays = std::to_string(kRepetitions);
    const std::string elements = std::to_string(4 * kRepetitions);
    EXPECT_EQ(platform_testing::LeftOverBy(
                  [&] {
                      Ask(kJSRV, Integers({62, 2}));
                  },
                  kRepetitions),
              "AXUIElementObject +" + elements + ", CallbackArray +" + arrays);
}

TEST_F(Ownership, ExceptionThatPassesThroughARequestFreesItsBody) {
    desktop_.replyInstead = [](const auto&) -> std::optional<desktop_link::Reply> {
        throw std::runtime_error("adversary");
    };
    EXPECT_THROW(Ask(kJGlM, Bytes(1000, 0xFF)), std::runtime_error);
    desktop_.replyInstead = nullptr;
}

TEST_F(Ownership, DriverWorksOnAfterAnExceptionPassedThroughARequest) {
    {
        const test_support::LeakAllowance stoppedHalfWay;
        desktop_->onRead = [](const auto&, const auto&) { throw std::runtime_error("adversary"); };
        EXPECT_THROW(Ask(kJElV, Integers({59})), std::runtime_error);
        EXPECT_THROW(Ask(kJWiP, Integers({1}) + Text("Board")), std::runtime_error);
    }
    desktop_->onRead = nullptr;
    EXPECT_EQ(Ask(kJElV, Integers({59})), Integers({1}));
}
