// A driver on a desktop in the test's own process, asked as the message port asks it.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>

#include "platform/Testing/LiveObjects.h"
#include "platform/Testing/LogCapture.h"
#include "tests/support/DriverInspector.h"
#include "tests/support/HomeFolder.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TestDriver.h"
#include "tests/unit/protocol/Bytes.h"

class DispatcherTest : public testing::Test {
  protected:
    // The editing application, version 10.4.6, in front, with the controls that requests name:
    //   _NS:59  check box, on, at (10.75, -20.75), in a group at (100.5, -7.5)
    //   _NS:60  text field "12 fps"             _NS:61  text field "none"
    //   _NS:64  text field "99999999999"
    //   _NS:62  radio group, second selected    _NS:63  radio group, none selected
    //   _NS:989855744 and _NS:4294967295  check boxes with values 7 and 8
    // in the first of the windows "Final Cut Pro", (0.9, 22.9) 1440.9 x 878.9, and "Color Board",
    // (50, 60) 300 x 200. The pointer is at (100.75, 200.25).
    DispatcherTest();
    explicit DispatcherTest(const std::string& scene);

    // The reply's bytes; nothing when there is none.
    std::optional<Bytes> Ask(SInt32 code, const Bytes& body);
    std::optional<Bytes> AskWithoutBody(SInt32 code);

    // Gives the driver's language these translations of window-title keys.
    void Translate(const std::map<std::string, std::string>& translations);

    CVEK_UserSpaceDriver& Driver() { return *driver_; }

    platform_testing::AutoreleasePool pool_;
    test_support::SessionFixture session_;
    test_support::HomeFolder home_;
    test_support::ScriptedDesktop desktop_;
    platform_testing::LogCapture log_;

  private:
    std::optional<Bytes> AskWith(SInt32 code, CFDataRef body);

    test_support::TestDriver driver_;
};
