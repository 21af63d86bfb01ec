// What the tests of the driver's own operations share: a driver with the editor in front and a
// companion that listens.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/support/Companion.h"
#include "tests/support/DriverInspector.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TestDriver.h"
#include "tests/unit/accessibility/AccessibilityTest.h"

struct SentMessage {
    SInt32 code;
    std::string body;  // the bytes as they are, the terminator included
    friend bool operator==(const SentMessage&, const SentMessage&) = default;
};

void PrintTo(const SentMessage& message, std::ostream* stream);

// A message whose body is a 0-terminated text.
SentMessage TextMessage(SInt32 code, const std::string& text);

// What the companion has got since the last call.
std::vector<SentMessage> TakeSentTexts(test_support::Companion& companion,
                                       CVEK_UserSpaceDriver& driver);

// SetValueOfAXRadioGroupWithID, whose deliberate leak LeakSanitizer must not report.
bool SelectRadioButton(CVEK_UserSpaceDriver& driver, CFStringRef identifier, unsigned index);

// GetColorPuckWithID, for tests that are not Objective-C++.
AXUIElementRef FindColorPuck(CVEK_UserSpaceDriver& driver, const std::string& identifier);

class DriverBesideEditor : public AccessibilityTest {
  protected:
    std::vector<SentMessage> Sent() { return TakeSentTexts(*companion_, *driver_); }

    // From now on the driver's messages have no receiver.
    void StopCompanion() { companion_.reset(); }

    int& Profile() { return DriverInspector::Profile(*driver_); }
    std::string LastClipName() { return DriverInspector::LastClipName(*driver_); }

    test_support::SessionFixture session_;
    std::optional<test_support::Companion> companion_{std::in_place};
    test_support::TestDriver driver_;
};
