// What the tests of the driver's life and ticks share: a standing clock, a desktop with some
// applications, a companion and a driver whose ticks the test decides.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "VEKCommon/MessageCodes.h"
#include "platform/Testing/LiveObjects.h"
#include "platform/Testing/LogCapture.h"
#include "platform/Testing/TestClock.h"
#include "tests/support/Companion.h"
#include "tests/support/DriverInspector.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TestDriver.h"
#include "tests/unit/driver/LanguageTag.h"

// The editor 10.4.1 in front with a selected clip and a playhead, both of which the profile row of
// that release finds; around it applications that are not the editor.
std::string SceneWithoutController();
std::string SceneWithController();

// In the run loop's default mode, as the driver's timer.
void RunLoopFor(CFTimeInterval seconds);

class TickedDriver : public testing::Test {
  protected:
    explicit TickedDriver(const std::string& scene = SceneWithoutController());
    ~TickedDriver() override;

    void Activate(const std::string& application);
    void RunTicks(int count = 1);
    void ObserveBoth();

    // Codes of what the companion has got since the last call.
    std::vector<SInt32> Sent();

    platform_testing::AutoreleasePool pool_;
    platform_testing::TestClock clock_;
    test_support::SessionFixture session_;
    test_support::ScriptedDesktop desktop_;
    std::optional<test_support::Companion> companion_{std::in_place};
    test_support::TestDriver driver_;
};
