// Every request of the companion between real processes: this one, the driver, and the desktop.

#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "scenes/notation/Hex.h"
#include "tests/support/Codes.h"
#include "tests/support/InheritedFlags.h"
#include "tests/support/Stage.h"

namespace {

using test_support::Role;
using test_support::Stage;

const char* const kScene = R"({
  "trusted": true,
  "messagingTimeout": 0.5,
  "screens": [ { "frame": [0, 0, 1440, 900] } ],
  "pointer": [100, 200],
  "front": "com.apple.FinalCut",
  "applications": [
    { "bundleID": "com.apple.FinalCut", "name": "Final Cut Pro", "pid": 501,
      "info": { "CFBundleShortVersionString": "10.4.6" },
      "windows": [
        { "AXRole": "AXWindow", "AXTitle": "Final Cut Pro", "AXPosition": [-3, 22],
          "AXSize": [1440.9, 878],
          "AXChildren": [ { "AXRole": "AXGroup", "AXPosition": [5, -6], "AXChildren": [
            { "AXRole": "AXCheckBox", "AXIdentifier": "_NS:59", "AXValue": 1, "AXPosition": [40, 50] },
            { "AXRole": "AXTextField", "AXIdentifier": "_NS:60", "AXValue": "42 frames", "AXPosition": [-30.5, 7] },
            { "AXRole": "AXRadioGroup", "AXIdentifier": "_NS:61", "AXChildren": [
              { "AXRole": "AXRadioButton", "AXValue": 0 },
              { "AXRole": "AXRadioButton", "AXValue": 1 },
              { "AXRole": "AXRadioButton", "AXValue": 0 } ] },
            { "AXRole": "AXButton", "AXIdentifier": "_NS:128", "AXPosition": [7, 8] } ] } ] } ] } ] })";

// The companion's requests.
class Port {
  public:
    Port() : port_(CFMessagePortCreateRemote(kCFAllocatorDefault, CFSTR("KRT9Background"))) {}
    ~Port() { CFRelease(port_); }
    Port(const Port&) = delete;
    Port& operator=(const Port&) = delete;

    // The reply as hex digits, none for no reply; a code of CFMessagePort when that failed.
    std::string Ask(const char* code, const std::optional<std::string>& body) {
        CFDataRef data = nullptr;
        if (body) {
            const std::vector<UInt8> bytes = scene_notation::ParseHex(*body).value();
            data =
                CFDataCreate(kCFAllocatorDefault, bytes.data(), static_cast<CFIndex>(bytes.size()));
        }
        CFDataRef reply = nullptr;
        const SInt32 status = CFMessagePortSendRequest(port_, test_support::CodeOf(code), data, 10,
                                                       10, kCFRunLoopDefaultMode, &reply);
        if (data != nullptr) {
            CFRelease(data);
        }
        if (status != kCFMessagePortSuccess) {
            return "status " + std::to_string(status);
        }
        const std::string hex = scene_notation::FormatHex(
            {CFDataGetBytePtr(reply), static_cast<std::size_t>(CFDataGetLength(reply))});
        CFRelease(reply);
        return hex;
    }

  private:
    CFMessagePortRef port_;
};

class Requests : public testing::Test {
  protected:
    Requests() {
        stage.StartDesktop(kScene);
        stage.StartDriver();
        port.emplace();
    }

    // The desktop's log, one JSON line an entry.
    std::string EventLog() { return stage.Control({"desktop", "log"}).standardOutput; }

    Stage stage;
    std::optional<Port> port;
};

struct Exchange {
    const char* code;
    std::optional<std::string> body;  // hex digits; none: absent
    std::string reply;                // hex digits; empty: no reply
};

TEST_F(Requests, AllTwentyOneAreAnsweredByteForByte) {
    const std::vector<Exchange> session = {
        {"JAcF", "010000000000000000000000", ""},
        {"JElV", "3b000000", "01000000"},
        {"JBtP", "3b000000", ""},
        {"JElV", "3b000000", "00000000"},
        {"JESI", "3c000000", "2a000000"},
        {"JElP", "3b000000", "3900000043000000"},  // 40 + 17, 50 + 17
        {"JElP", "3c000000", "f3ffffff18000000"},  // -30.5 + 17 truncated, 7 + 17
        {"JElP", "80000000", "0700000008000000"},  // _NS:128 without the offset
        {"JEPp", "3b000000", "05000000faffffff"},  // the group's position
        {"JGRV", "3d000000", "01000000"},
        {"JSRV", "3d00000002000000", ""},
        {"JGRV", "3d000000", "02000000"},
        {"JSIS", "3c000000f9ffffff", ""},  // -7
        {"JESI", "3c000000", "f9ffffff"},
        {"JCPK", "310000000009000001000000", ""},  // Space, Command and Option, down
        {"JCPK", "310000000009000000000000", ""},
        {"JCPK", "000000000009000001000000", ""},          // key 0 is never posted
        {"JPMS", "64000000c80000000002000001000000", ""},  // 100,200 with Shift and click
        {"JPMC", "6e000000d20000000002000001000000", ""},
        {"JPME", "78000000dc0000000002000001000000", ""},
        {"JGlM", std::nullopt, "78000000dc000000"},
        {"JObE", std::nullopt, ""},
        {"JObT", std::nullopt, ""},
        {"JStO", std::nullopt, ""},
        {"JXRs", std::nullopt, ""},
        {"JPth", "00", ""},
        {"JWiP", "0100000046696e616c00", "fdffffff16000000a00500006e030000"},  // "Final", partial
        {"JTWP",
         "01000000"  // one target
         "46696e616c00"
         "00000000"
         "00000000"
         "00000000"
         "00000000"  // "Final", no UTF-16
         "00000000"
         "00000000",
         "00000000fdffffff16000000a00500006e030000"},
        {"JElV", "0f270000", ""},  // _NS:9999 is not there
    };
    for (const Exchange& exchange : session) {
        EXPECT_EQ(port->Ask(exchange.code, exchange.body), exchange.reply)
            << exchange.code << " " << exchange.body.value_or("(absent)");
    }
    EXPECT_EQ(
        EventLog(),
        test_support::WithInheritedFlags(
            R"({"n":1,"action":"AXPress","application":"com.apple.FinalCut","element":"/0/0/0","identifier":"_NS:59","error":0,"works":true,"presses":1}
{"n":2,"action":"AXPress","application":"com.apple.FinalCut","element":"/0/0/2/2","error":0,"works":true,"presses":1}
{"n":3,"set":"AXValue","application":"com.apple.FinalCut","element":"/0/0/1","identifier":"_NS:60","value":"-7","error":0,"works":true}
{"n":4,"action":"AXConfirm","application":"com.apple.FinalCut","element":"/0/0/1","identifier":"_NS:60","error":0,"works":true}
{"n":5,"event":"keyDown","type":10,"keyCode":49,"flags":1572864,"flagsSet":true,"source":-1,"tap":0}
{"n":6,"event":"keyUp","type":11,"keyCode":49,"flags":0,"flagsSet":true,"source":-1,"tap":0}
{"n":7,"event":"keyDown","type":10,"keyCode":56,"flags":131072,"flagsSet":true,"source":-1,"tap":0}
{"n":8,"event":"mouseMoved","type":5,"position":[100,200],"button":0,"flags":131072,"flagsSet":false,"source":null,"tap":0}
{"n":9,"event":"leftMouseDown","type":1,"position":[100,200],"button":0,"flags":131072,"flagsSet":false,"source":null,"tap":0}
{"n":10,"event":"leftMouseDragged","type":6,"position":[110,210],"button":0,"flags":131072,"flagsSet":true,"source":null,"tap":0}
{"n":11,"event":"leftMouseUp","type":2,"position":[120,220],"button":0,"flags":131072,"flagsSet":true,"source":null,"tap":0}
{"n":12,"event":"keyUp","type":11,"keyCode":56,"flags":0,"flagsSet":true,"source":-1,"tap":0}
{"n":13,"set":"AXMain","application":"com.apple.FinalCut","element":"/0","value":true,"error":0,"works":true}
)"));
    EXPECT_EQ(stage.Interrupt(Role::driver), 0) << stage.Driver().StandardError();
}

TEST_F(Requests, UnknownCodeIsLoggedAndNotAnswered) {
    EXPECT_EQ(port->Ask("ABCD", "00"), "");
    EXPECT_TRUE(stage.Driver().WaitForOutput(" - message not handled"));
}

TEST_F(Requests, BodyCutShortIsLoggedOnceAndNotAnswered) {
    EXPECT_EQ(port->Ask("JBtP", "3b0000"), "");
    EXPECT_TRUE(stage.Driver().WaitForOutput("request 'JBtP' refused"));
    EXPECT_EQ(port->Ask("JElV", "3b000000"), "01000000") << "nothing was pressed, and it serves on";
}

TEST_F(Requests, SeveralCompanionsAreServedSideBySide) {
    Port another;
    for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(port->Ask("JElV", "3b000000"), "01000000");
        EXPECT_EQ(another.Ask("JESI", "3c000000"), "2a000000");
    }
}

TEST_F(Requests, ASeriesOfPingsIsMeasured) {
    const auto result = Stage::Control({"ping", "--count", "100"});
    EXPECT_EQ(result.status, 0) << result.standardError;
    double shortest = 0, median = 0, ninetyNinth = 0;
    ASSERT_EQ(std::sscanf(result.standardOutput.c_str(),
                          "100 replies: min %lf ms, median %lf ms, p99 %lf ms", &shortest, &median,
                          &ninetyNinth),
              3)
        << result.standardOutput;
    EXPECT_GT(shortest, 0);
    EXPECT_LE(shortest, median);
    EXPECT_LE(median, ninetyNinth);
}

// Identifiers of every kind that a search can end with.
TEST_F(Requests, TheReasonForNoReplyIsFoundOutWithoutTheDriver) {
    ASSERT_EQ(stage.Control({"desktop", "set", "/0/0/3", "AXRole", "AXSlider"}).status, 0);
    for (const auto& [element, status, outcome] : {std::tuple{"59", 0, "found"},
                                                   {"60", 0, "found"},
                                                   {"61", 0, "found"},
                                                   {"128", 12, "other-role"},
                                                   {"9999", 13, "not-there"}}) {
        const auto reply = stage.Control({"position", element});
        const auto reason = stage.Control({"why", element, "--json"});
        EXPECT_EQ(reason.status, status) << reason.standardOutput;
        EXPECT_THAT(reason.standardOutput,
                    testing::HasSubstr(std::string("\"outcome\":\"") + outcome + "\""));
        const bool isFound = status == 0;
        // The radio group is found, but has no position.
        EXPECT_EQ(reply.status == 0, isFound && std::string(element) != "61") << element;
    }
    ASSERT_EQ(stage.Control({"desktop", "activate"}).status, 0);
    EXPECT_EQ(stage.Control({"why", "59"}).status, 11);
    ASSERT_EQ(stage.Control({"desktop", "activate", "com.apple.FinalCut"}).status, 0);
    ASSERT_EQ(stage.Control({"desktop", "trust", "--revoke"}).status, 0);
    EXPECT_EQ(stage.Control({"value", "59"}).status, 4);
    const auto untrusted = stage.Control({"why", "59"});
    EXPECT_EQ(untrusted.status, 11);
    EXPECT_THAT(untrusted.standardOutput, testing::HasSubstr("not trusted"));
}

TEST_F(Requests, HungEditorGivesNoReplyWithinTheCallsTimeOutAndTheDriverServesOn) {
    ASSERT_EQ(stage.Control({"desktop", "hang", "com.apple.FinalCut"}).status, 0);
    EXPECT_EQ(port->Ask("JElV", "3b000000"), "");
    EXPECT_EQ(port->Ask("JGlM", std::nullopt), "64000000c8000000");
    ASSERT_EQ(stage.Control({"desktop", "unhang", "com.apple.FinalCut"}).status, 0);
    EXPECT_EQ(port->Ask("JElV", "3b000000"), "01000000");
}

TEST_F(Requests, DeadEditorGivesNoReply) {
    ASSERT_EQ(stage.Control({"desktop", "kill", "com.apple.FinalCut"}).status, 0);
    EXPECT_EQ(port->Ask("JElV", "3b000000"), "");
    EXPECT_EQ(port->Ask("JBtP", "3b000000"), "");
    EXPECT_EQ(port->Ask("JWiP", "0100000046696e616c00"), "");
}

TEST_F(Requests, WithoutDesktopTheDriverServesOn) {
    stage.Control({"desktop", "stop"});
    ASSERT_EQ(stage.Desktop().WaitForExit(), 0);
    EXPECT_EQ(port->Ask("JElV", "3b000000"), "");
    EXPECT_EQ(port->Ask("JPMS", "64000000c80000000002000001000000"), "");
    EXPECT_EQ(stage.Interrupt(Role::driver), 0) << stage.Driver().StandardError();
}

}  // namespace
