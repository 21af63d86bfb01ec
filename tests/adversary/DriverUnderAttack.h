// A driver between a companion that listens and a desktop that can become hostile.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <optional>
#include <string>

#include "platform/Testing/LiveObjects.h"
#include "platform/Testing/LogCapture.h"
#include "tests/adversary/ExpectedDriver.h"
#include "tests/support/Companion.h"
#include "tests/support/DriverInspector.h"
#include "tests/support/HomeFolder.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TestDriver.h"

namespace adversary {

class DriverUnderAttack {
  public:
    DriverUnderAttack();
    ~DriverUnderAttack();
    DriverUnderAttack(const DriverUnderAttack&) = delete;
    DriverUnderAttack& operator=(const DriverUnderAttack&) = delete;

    // The editing application of that version is in front as process 501. Nothing is observed and
    // nothing remembered, but for where the next tick looks for the clip's name.
    void Forget(const std::string& version);

    // The next tick looks for the clip's name there: 0 and 1 are the static texts, 2 the table. May
    // load another scene.
    void LookForClipNameIn(unsigned source);
    void ObserveBoth();

    // One request as the message port hands it over, one tick as the timer does.
    Outcome Ask(SInt32 code, const Bytes& body);
    Outcome Tick();

    CVEK_UserSpaceDriver& Driver() { return *driver_; }
    test_support::ScriptedDesktop& Desktop() { return desktop_; }

    // What the driver must know and do by now.
    ExpectedDriver& Expected() { return expected_; }

    // Where the driver looks for the clip's name is not known any more.
    void LoseTrack() { sourceIsKnown_ = false; }

  private:
    void FindFirstSource();
    void Collect(Outcome& outcome);

    test_support::SessionFixture session_;
    test_support::HomeFolder home_;  // without translations
    test_support::Companion companion_;
    test_support::ScriptedDesktop desktop_;
    test_support::TestDriver driver_;
    platform_testing::LogCapture log_;
    ExpectedDriver expected_;
    bool sourceIsKnown_ = false;
};

}  // namespace adversary
