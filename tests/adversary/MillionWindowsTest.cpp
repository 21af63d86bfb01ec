// An application with a million windows: every lookup ends, reads each window as often as it must,
// and takes no more memory than the list of windows itself.

#include <ApplicationServices/ApplicationServices.h>
#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>

#include "VEKCommon/MessageCodes.h"
#include "platform/DesktopLink/Transport.h"
#include "platform/Testing/LiveObjects.h"
#include "tests/adversary/AllocationMeter.h"
#include "tests/adversary/CrowdedApplication.h"
#include "tests/support/DriverInspector.h"
#include "tests/support/FrontApplicationState.h"
#include "tests/support/HomeFolder.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TestDriver.h"
#include "tests/unit/protocol/Bytes.h"

namespace adversary {

namespace {

// An allocation costs seventy times as much under the sanitizer, which walks the stack at each.
#if __has_feature(address_sanitizer)
constexpr std::uint64_t kMany = 20'000;
#else
constexpr std::uint64_t kMany = 1'000'000;
#endif

constexpr std::size_t kSmallChange = 1U << 20U;  // bytes

std::string Candidate(unsigned number) {
    return "Absent window " + std::to_string(number);
}

Bytes Targets(unsigned count) {
    Bytes body = Integers({count});
    for (unsigned i = 0; i < count; ++i) {
        body = body + Text(Candidate(i)) + Integers({0, 0, 0, 0, 0, 0});
    }
    return body;
}

class MillionWindows : public testing::Test {
  protected:
    MillionWindows() {
        test_support::SetFrontApplication(
            {"com.apple.FinalCut", "10.4.6", CrowdedApplication::kProcess});
        ShowWindows(kMany);
        Ask(kJElV, Integers({59}));  // fills the caches of the runtime
        TakeCount();
    }

    // The application in front has this many.
    void ShowWindows(std::uint64_t count) { desktop_.replyInstead = CrowdedApplication(count); }

    // Exchanges since the last call.
    unsigned long TakeCount() {
        const unsigned long before = std::exchange(counted_, desktop_link::ExchangeCount());
        return counted_ - before;
    }

    // Gives each of the candidates of Targets() a translation.
    void Translate(unsigned count) {
        std::string document = "{";
        for (unsigned i = 0; i < count; ++i) {
            document += "\"" + Candidate(i) + "\" = \"Fenster " + std::to_string(i) + "\";";
        }
        home_.WriteTranslations("xx", document + "}");
        std::strcpy(DriverInspector::Language(*driver_), "xx");
    }

    static bool Ask(SInt32 code, const Bytes& body) {
        const platform_testing::AutoreleasePool pool;
        const CFDataRef data =
            CFDataCreate(kCFAllocatorDefault, body.data(), static_cast<CFIndex>(body.size()));
        const CFDataRef reply =
            CVEK_UserSpaceDriver::MessageCallbackEntry(nullptr, code, data, nullptr);
        CFRelease(data);
        if (reply != nullptr) {
            CFRelease(reply);
        }
        return reply != nullptr;
    }

    template <typename Operation>
    static std::size_t PeakOf(Operation operation) {
        const AllocationMeter meter;
        operation();
        return meter.SoFar().peak;
    }

    // The most that reading the list of windows takes, whatever is then done with it.
    static std::size_t PeakOfTheList() {
        return PeakOf([] {
            const platform_testing::AutoreleasePool pool;
            const AXUIElementRef application =
                AXUIElementCreateApplication(CrowdedApplication::kProcess);
            CFTypeRef windows = nullptr;
            AXUIElementCopyAttributeValue(application, kAXWindowsAttribute, &windows);
            CFRelease(application);
            CFRelease(windows);
        });
    }

    platform_testing::AutoreleasePool pool_;
    test_support::SessionFixture session_;
    test_support::HomeFolder home_;
    test_support::ScriptedDesktop desktop_;  // of whose exchanges none is kept
    test_support::TestDriver driver_;
    unsigned long counted_ = 0;
};

}  // namespace

TEST_F(MillionWindows, ControlIsSoughtInEachOfThem) {
    EXPECT_LT(PeakOf([] { EXPECT_FALSE(Ask(kJElV, Integers({59}))); }),
              PeakOfTheList() + kSmallChange);
    EXPECT_EQ(TakeCount(), 1 + kMany + 1);
}

TEST_F(MillionWindows, WindowIsSoughtAmongThemToTheLast) {
    const Bytes last = Integers({0}) + Text("Window " + std::to_string(kMany));
    EXPECT_LT(PeakOf([&] { EXPECT_FALSE(Ask(kJWiP, last)) << "it cannot be made the main one"; }),
              PeakOfTheList() + kSmallChange);
    EXPECT_EQ(TakeCount(), 1 + kMany + 1 + 1) << "titles, and AXMain of the last";
}

// Regression: each title of a candidate used to be kept until the end of the request.
TEST_F(MillionWindows, CandidatesAreSoughtAmongThemWithoutKeepingTheirTitles) {
    EXPECT_LT(PeakOf([] { EXPECT_FALSE(Ask(kJTWP, Targets(2))); }), PeakOfTheList() + kSmallChange);
    EXPECT_EQ(TakeCount(), 1 + kMany + 1);
}

TEST_F(MillionWindows, TickLooksForEachOfItsControlsInEachOfThem) {
    driver_->ObserveFCPXClipSelectionChange();
    driver_->ObserveFCPXTimelineTimecode();
    EXPECT_LT(PeakOf([] {
                  const platform_testing::AutoreleasePool pool;
                  CVEK_UserSpaceDriver::TimeoutCounterEntry(nullptr, nullptr);
              }),
              PeakOfTheList() + kSmallChange);
    EXPECT_EQ(TakeCount(), 2 * (1 + kMany) + 1);
}

// The same lookups with a translation for every candidate, which is read again for every window.
TEST_F(MillionWindows, TranslatedTitlesAreNotKeptEither) {
    constexpr unsigned kCandidates = 300;
    Translate(kCandidates);
    ShowWindows(1);
    const std::size_t ofOneWindow = PeakOf([] { Ask(kJTWP, Targets(kCandidates)); });
    ShowWindows(kMany / 1000);
    EXPECT_LT(PeakOf([] { EXPECT_FALSE(Ask(kJTWP, Targets(kCandidates))); }),
              ofOneWindow + kSmallChange);
}

}  // namespace adversary
