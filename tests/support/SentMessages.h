// What a driver has sent to a companion, both in the test's own process.
#pragma once

#include <stdexcept>
#include <utility>
#include <vector>

#include "VEKCommon/MessageCodes.h"
#include "driver/CVEK_UserSpaceDriver.h"
#include "tests/support/Companion.h"
#include "tests/support/RunLoop.h"

namespace test_support {

// Waits until everything has arrived that the driver has sent so far, and takes it. Throws when it
// does not arrive.
inline std::vector<Companion::Message> TakeSent(CVEK_UserSpaceDriver& driver,
                                                Companion& companion) {
    // Sent on the same connection after everything else: when it arrives, all of that has arrived.
    constexpr SInt32 kLast = FourCharacterCode("Last");
    driver.SendMessage(kLast, nullptr, 0, false, nullptr);
    std::vector<Companion::Message>& received = companion.received;
    if (!RunLoopUntil([&] { return !received.empty() && received.back().code == kLast; })) {
        throw std::runtime_error("what the driver sent did not arrive");
    }
    received.pop_back();
    return std::exchange(received, {});
}

inline std::vector<SInt32> CodesOf(const std::vector<Companion::Message>& messages) {
    std::vector<SInt32> codes;
    for (const Companion::Message& message : messages) {
        codes.push_back(message.code);
    }
    return codes;
}

}  // namespace test_support
