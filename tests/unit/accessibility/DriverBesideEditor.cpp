#include "tests/unit/accessibility/DriverBesideEditor.h"

#include "VEKCommon/MessageCodes.h"
#include "tests/support/LeakAllowance.h"
#include "tests/support/SentMessages.h"

namespace {

std::string CodeText(SInt32 code) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        text += static_cast<char>(static_cast<UInt32>(code) >> shift & 0xFF);
    }
    return text;
}

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

std::vector<SentMessage> TakeSentTexts(test_support::Companion& companion,
                                       CVEK_UserSpaceDriver& driver) {
    std::vector<SentMessage> sent;
    for (const auto& [code, body] : test_support::TakeSent(driver, companion)) {
        sent.push_back({code, std::string(body.begin(), body.end())});
    }
    return sent;
}
