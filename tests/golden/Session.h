// A companion's session with the driver, performed step by step: the desktop, the companion's port
// and the driver with its timer are all in this process, over their real ports, and the clock moves
// only where a step says so.
//
// Besides the steps of every recording (tools/recording/Recording.h):
//
//   title KEY "TEXT"   an entry of that language's table of window titles; after `language`
//   status WORD...     what the companion answers to a status query from now on: the first of its
//                      seven words, or x and any bytes, or nothing
//   counts             asks the driver for the units and channels it was told
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Testing/LogCapture.h"
#include "platform/Testing/TestClock.h"
#include "tests/support/Companion.h"
#include "tests/support/HomeFolder.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TestDriver.h"
#include "tools/recording/Recording.h"

namespace golden {

using recording::Bytes;

class Session {
  public:
    Session() = default;
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // Returns what the step caused, in lines: the request's bytes and its reply; what the driver
    // sent; what the desktop saw; what was logged. Throws std::exception for an unknown or
    // malformed step.
    std::vector<std::string> Perform(const std::string& step);

  private:
    using Arguments = std::vector<std::string>;

    void Scene(const std::string& file);
    void Start();
    void Title(const std::string& key, const std::string& text);
    void Ask(SInt32 code, const std::optional<Bytes>& body);
    void Tick(int count);
    void AnswerStatus(const Arguments& words);
    void ReadCounts();

    std::optional<Bytes> Exchange(SInt32 code, CFDataRef body);
    void Report();
    void Add(const char* what, const std::string& text);

    bool isHeard_ = true;               // until the step `unheard`
    std::vector<std::string> lines_;    // of the step under way
    std::uint64_t desktopEntries_ = 0;  // entries of its log that were reported
    std::string language_ = "en";
    std::map<std::string, std::string> titles_;

    test_support::HomeFolder home_;
    platform_testing::TestClock clock_;
    std::optional<test_support::SessionFixture> session_;
    std::optional<test_support::ScriptedDesktop> desktop_;
    std::optional<test_support::Companion> companion_;
    std::optional<test_support::TestDriver> driver_;
    std::optional<platform_testing::LogCapture> log_;
    CFRunLoopTimerRef timer_ = nullptr;
    CFMessagePortRef port_ = nullptr;  // the driver's, from the companion's side
};

}  // namespace golden
