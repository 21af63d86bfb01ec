// The state after the constructor, with everything available and without a port.

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>

#include "tests/unit/driver/TickedDriver.h"

namespace {

using platform_testing::LogCapture;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

// A driver in memory full of garbage: whatever it does not set stays visible.
class DriverInGarbage {
  public:
    DriverInGarbage() : memory_(::operator new(sizeof(CVEK_UserSpaceDriver))) {
        std::fill_n(static_cast<volatile unsigned char*>(memory_), sizeof(CVEK_UserSpaceDriver),
                    static_cast<unsigned char>(0xA5));
        driver_ = new (memory_) CVEK_UserSpaceDriver;
    }
    ~DriverInGarbage() {
        const CFRunLoopTimerRef timer = DriverInspector::TimeoutTimer(*driver_);
        CFRelease(DriverInspector::LastTimecode(*driver_));
        driver_->~CVEK_UserSpaceDriver();
        ::operator delete(memory_);
        if (timer != nullptr) {
            CFRelease(timer);
        }
        CVEK_UserSpaceDriver::sSelf = nullptr;
    }
    DriverInGarbage(const DriverInGarbage&) = delete;
    DriverInGarbage& operator=(const DriverInGarbage&) = delete;

    CVEK_UserSpaceDriver& operator*() { return *driver_; }

  private:
    void* memory_;
    CVEK_UserSpaceDriver* driver_;
};

class Construction : public testing::Test {
  protected:
    Construction() { LanguageTag::Current() = LanguageTag(); }

    std::vector<std::string> DesktopLog() {
        std::vector<std::string> lines;
        lines.push_back(desktop_->Run(R"({"command": "log"})"));
        return lines;
    }

    platform_testing::AutoreleasePool pool_;
    platform_testing::TestClock clock_;
    test_support::SessionFixture session_;
    test_support::ScriptedDesktop desktop_{SceneWithController()};
    LogCapture log_;
};

void ExpectStateOfTheStart(CVEK_UserSpaceDriver& driver) {
    EXPECT_EQ(DriverInspector::UnitCount(driver), 1);
    EXPECT_EQ(DriverInspector::ChannelCount(driver), 0);
    EXPECT_EQ(DriverInspector::StatusReserved(driver), 0);
    EXPECT_FALSE(DriverInspector::StatusValid(driver));
    EXPECT_FALSE(DriverInspector::ConnectState(driver));
    EXPECT_FALSE(DriverInspector::LocaleSent(driver));
    EXPECT_FALSE(DriverInspector::ObserveClipSelection(driver));
    EXPECT_FALSE(DriverInspector::ObserveTimelineTimecode(driver));
    EXPECT_FALSE(DriverInspector::TimelineIndexVisible(driver));
    EXPECT_FALSE(DriverInspector::TimelineIndexChanged(driver));
    EXPECT_EQ(DriverInspector::LastClipRow(driver), -1);
    EXPECT_STREQ(DriverInspector::LastClipName(driver), "");
    EXPECT_STREQ(DriverInspector::Language(driver), "");
    EXPECT_EQ(CFStringGetLength(DriverInspector::LastTimecode(driver)), 0);
    EXPECT_EQ(DriverInspector::Profile(driver), 5);
    EXPECT_EQ(CVEK_UserSpaceDriver::sSelf, &driver);
}

TEST_F(Construction, LeavesTheFieldsAtTheirFirstValues) {
    test_support::Companion companion;
    DriverInGarbage driver;
    ExpectStateOfTheStart(*driver);
    EXPECT_STREQ(DriverInspector::VersionString(*driver), "unknown version")
        << "this program lies in no bundle";
}

TEST_F(Construction, OpensEverythingThatIsThere) {
    test_support::Companion companion;
    DriverInGarbage driver;
    EXPECT_TRUE(DriverInspector::LocalPort(*driver).IsValid());
    EXPECT_EQ(DriverInspector::RunLoopSource(*driver),
              DriverInspector::LocalPort(*driver).GetRunLoopSource());
    EXPECT_TRUE(DriverInspector::RemotePort(*driver)->IsValid());
    EXPECT_NE(DriverInspector::MIDIClient(*driver), 0u);
    EXPECT_NE(DriverInspector::InputPort(*driver), 0u);
    EXPECT_NE(DriverInspector::OutputPort(*driver), 0u);
    EXPECT_NE(DriverInspector::SourceEndpoint(*driver), 0u);
    EXPECT_NE(DriverInspector::DestinationEndpoint(*driver), 0u);
    EXPECT_TRUE(DriverInspector::Connected(*driver));
    EXPECT_NE(DriverInspector::TimeoutTimer(*driver), nullptr);
}

TEST_F(Construction, LogsVersionThenTrust) {
    test_support::Companion companion;
    DriverInGarbage driver;
    EXPECT_THAT(log_.ConsoleTexts(),
                ElementsAre("(null) version (null)\n", "accessibilityEnabled = 1\n"));
    EXPECT_THAT(log_.SystemTexts(), IsEmpty());
}

TEST_F(Construction, GoesOnWithoutTrustAfterAskingForIt) {
    test_support::Companion companion;
    desktop_.Run(R"({"command": "trust", "trusted": false})");
    DriverInGarbage driver;
    EXPECT_THAT(log_.ConsoleTexts(), Contains("accessibilityEnabled = 0\n"));
    EXPECT_THAT(DesktopLog(), ElementsAre(HasSubstr("trustPrompt")));
    EXPECT_NE(DriverInspector::TimeoutTimer(*driver), nullptr);
}

TEST_F(Construction, SendsNothingByItself) {
    test_support::Companion companion;
    DriverInGarbage driver;
    RunLoopFor(0);
    EXPECT_THAT(companion.received, IsEmpty());
    EXPECT_THAT(LanguageTag::Current().asked, IsEmpty());
}

TEST_F(Construction, WithoutRunLoopSourceEndsBeforeMIDICompanionTrustAndTimer) {
    // No port can be made in a session that has no folder.
    setenv("KRT9_SESSION_DIR", (session_.Path() / "missing" / "folder").c_str(), 1);
    desktop_.Run(R"({"command": "trust", "trusted": false})");
    {
        DriverInGarbage driver;
        ExpectStateOfTheStart(*driver);
        EXPECT_FALSE(DriverInspector::LocalPort(*driver).IsValid());
        EXPECT_EQ(DriverInspector::RunLoopSource(*driver), nullptr);
        EXPECT_EQ(DriverInspector::MIDIClient(*driver), 0u);
        EXPECT_FALSE(DriverInspector::Connected(*driver));
        EXPECT_EQ(DriverInspector::RemotePort(*driver), nullptr);
        EXPECT_EQ(DriverInspector::TimeoutTimer(*driver), nullptr);
        EXPECT_EQ((*driver).SendMessage(kStus, nullptr, 0, false, nullptr), -2);
    }
    EXPECT_THAT(log_.ConsoleTexts(), Contains("(null) version (null)\n"));
    EXPECT_THAT(log_.ConsoleTexts(), Not(Contains(HasSubstr("accessibilityEnabled"))));
    EXPECT_THAT(log_.SystemTexts(), ElementsAre(StartsWith("SendMessage no remote port")))
        << "construction itself does not complain";
    EXPECT_THAT(DesktopLog(), Not(Contains(HasSubstr("trustPrompt"))));
    EXPECT_THAT(DesktopLog(), Not(Contains(HasSubstr("midi"))));
}

TEST_F(Construction, DebugBufferIsTouchedByNobody) {
    test_support::Companion companion;
    DriverInGarbage driver;
    EXPECT_EQ(sizeof CVEK_UserSpaceDriver::sDebugStr, 1024u);
    EXPECT_TRUE(std::all_of(std::begin(CVEK_UserSpaceDriver::sDebugStr),
                            std::end(CVEK_UserSpaceDriver::sDebugStr),
                            [](char character) { return character == 0; }));
}

}  // namespace
