#include "tests/unit/accessibility/DriverTest.h"

#include "VEKCommon/MessageCodes.h"
#include "tests/support/LeakAllowance.h"

namespace {

std::string CodeText(SInt32 code) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        text += static_cast<char>(static_cast<UInt32>(code) >> shift & 0xFF);
    }
    return text;
}

// Sent after everything else on the same connection: when it arrives, all before it has arrived.
constexpr SInt32 kLast = FourCharacterCode("Last");
constexpr CFTimeInterval kPatience = 10;  // seconds; passes only when a test fails

}  // namespace

void PrintTo(const SentMessage& message, std::ostream* stream) {
    *stream << CodeText(message.code) << ' ' << testing::PrintToString(message.body);
}

SentMessage TextMessage(SInt32 code, const std::string& text) {
    return {code, std::string(text.c_str(), text.size() + 1)};
}

bool SelectRadioButton(CVEK_UserSpaceDriver& driver, CFStringRef identifier, unsigned index) {
    test_support::LeakAllowance deliberate;
    return driver.SetValueOfAXRadioGroupWithID(identifier, index);
}

std::vector<SentMessage> TakeSent(test_support::Companion& companion,
                                  CVEK_UserSpaceDriver& driver) {
    unsigned char nothing = 0;
    driver.SendMessage(kLast, &nothing, 0, false, nullptr);
    std::vector<SentMessage> sent;
    while (companion.received.empty() || companion.received.back().code != kLast) {
        if (CFRunLoopRunInMode(kCFRunLoopDefaultMode, kPatience, true) == kCFRunLoopRunTimedOut) {
            ADD_FAILURE() << "what the driver sent did not arrive";
            return sent;
        }
    }
    companion.received.pop_back();
    for (const test_support::Companion::Message& message : companion.received) {
        sent.push_back({message.code, std::string(message.body.begin(), message.body.end())});
    }
    companion.received.clear();
    return sent;
}
