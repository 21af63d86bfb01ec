#include "tests/unit/accessibility/DriverBesideEditor.h"

#include "VEKCommon/MessageCodes.h"
#include "tests/support/Codes.h"
#include "tests/support/LeakAllowance.h"
#include "tests/support/SentMessages.h"

void PrintTo(const SentMessage& message, std::ostream* stream) {
    *stream << test_support::CodeText(message.code) << ' ' << testing::PrintToString(message.body);
}

SentMessage TextMessage(SInt32 code, const std::string& text) {
    return {code, std::string(text.c_str(), text.size() + 1)};
}

bool SelectRadioButton(CVEK_UserSpaceDriver& driver, CFStringRef identifier, unsigned index) {
    test_support::LeakAllowance deliberate;
    return driver.SetValueOfAXRadioGroupWithID(identifier, index);
}

std::vector<SentMessage> TakeSentTexts(test_support::Companion& companion,
                                       CVEK_UserSpaceDriver& driver) {
    std::vector<SentMessage> sent;
    for (const auto& [code, body] : test_support::TakeSent(driver, companion)) {
        sent.push_back({code, std::string(body.begin(), body.end())});
    }
    return sent;
}
