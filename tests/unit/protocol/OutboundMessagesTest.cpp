// What the driver sends to the companion, and what it does when there is none.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>

#include "VEKCommon/MessageCodes.h"
#include "platform/Testing/LiveObjects.h"
#include "platform/Testing/LogCapture.h"
#include "platform/Testing/TestClock.h"
#include "tests/support/Companion.h"
#include "tests/support/DriverInspector.h"
#include "tests/support/OwnedObject.h"
#include "tests/support/SentMessages.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TestDriver.h"

namespace {

using platform_testing::LogCapture;
using platform_testing::LogLine;
using test_support::Bytes;
using testing::ElementsAre;
using testing::IsEmpty;

std::string AddressText(const void* address) {
    char text[64];
    std::snprintf(text, sizeof text, "%p", address);
    return text;
}

Bytes Content(CFDataRef data) {
    return {CFDataGetBytePtr(data), CFDataGetBytePtr(data) + CFDataGetLength(data)};
}

class OutboundMessages : public testing::Test {
  protected:
    platform_testing::AutoreleasePool pool_;
    platform_testing::TestClock clock_;  // no time-out comes before what is ready
    test_support::SessionFixture session_;
};

class WithCompanion : public OutboundMessages {
  protected:
    std::vector<test_support::Companion::Message> Sent() {
        return test_support::TakeSent(*driver_, companion_);
    }

    test_support::Companion companion_;
    test_support::TestDriver driver_;
};

}  // namespace

TEST_F(OutboundMessages, WithoutCompanionAtStartEverySendFailsAndIsLoggedOnce) {
    test_support::TestDriver driver;
    const LogCapture log;
    unsigned char byte = 1;
    CFDataRef reply = nullptr;
    EXPECT_EQ(driver->SendMessage(kJSLg, &byte, 1, false, nullptr), -2);
    EXPECT_EQ(driver->SendMessage(kStus, nullptr, 0, true, &reply), -2);
    EXPECT_EQ(reply, nullptr);
    const std::string line = "SendMessage no remote port (" +
                             AddressText(DriverInspector::RemotePort(*driver)) +
                             ") or remote port invalid";
    EXPECT_THAT(log.Lines(), ElementsAre(LogLine{LogLine::Log::system, 0, line},
                                         LogLine{LogLine::Log::system, 0, line}));
}

TEST_F(OutboundMessages, CompanionThatComesAfterTheStartIsNotFoundAnyMore) {
    test_support::TestDriver driver;
    test_support::Companion companion;
    EXPECT_EQ(driver->SendMessage(kStus, nullptr, 0, false, nullptr), -2);
    EXPECT_THAT(companion.received, IsEmpty());
}

TEST_F(OutboundMessages, WithoutRemotePortObjectASendFailsAlike) {
    test_support::TestDriver driver;
    delete DriverInspector::RemotePort(*driver);
    DriverInspector::RemotePort(*driver) = nullptr;
    const LogCapture log;
    EXPECT_EQ(driver->SendMessage(kStus, nullptr, 0, false, nullptr), -2);
    EXPECT_THAT(log.SystemTexts(), ElementsAre("SendMessage no remote port (" +
                                               AddressText(nullptr) + ") or remote port invalid"));
}

TEST_F(WithCompanion, BytesTravelAsTheyAre) {
    unsigned char text[] = {'d', 'e', 0};
    EXPECT_EQ(driver_->SendMessage(kJSLg, text, sizeof text, false, nullptr), 0);
    const auto sent = Sent();
    ASSERT_THAT(CodesOf(sent), ElementsAre(kJSLg));
    EXPECT_EQ(sent[0].body, (Bytes{'d', 'e', 0}));
}

TEST_F(WithCompanion, ReplyBelongsToTheCaller) {
    companion_.reply = Bytes{1, 2, 3};
    CFDataRef reply = nullptr;
    EXPECT_EQ(driver_->SendMessage(kStus, nullptr, 0, true, &reply), 0);
    ASSERT_NE(reply, nullptr);
    EXPECT_EQ(Content(reply), (Bytes{1, 2, 3}));
    CFRelease(reply);
    EXPECT_THAT(CodesOf(companion_.received), ElementsAre(kStus));
    EXPECT_THAT(companion_.received[0].body, IsEmpty());
}

TEST_F(WithCompanion, ReplyIsNotAwaitedWithoutAPlaceForIt) {
    companion_.reply = Bytes{1};
    EXPECT_EQ(driver_->SendMessage(kStus, nullptr, 0, true, nullptr), 0);
    EXPECT_THAT(companion_.received, IsEmpty()) << "nothing ran while it was sent";
    EXPECT_THAT(CodesOf(Sent()), ElementsAre(kStus));
}

TEST_F(WithCompanion, PlaceForAReplyStaysUntouchedWhenNoneIsWanted) {
    companion_.reply = Bytes{1};
    CFDataRef reply = nullptr;
    EXPECT_EQ(driver_->SendMessage(kStus, nullptr, 0, false, &reply), 0);
    EXPECT_THAT(CodesOf(Sent()), ElementsAre(kStus));
    EXPECT_EQ(reply, nullptr);
}

TEST_F(OutboundMessages, ReplyIsAwaitedForTenMillisecondsAndNoLonger) {
    const auto callback = [](CFMessagePortRef, SInt32, CFDataRef, void*) -> CFDataRef {
        return nullptr;
    };
    const CACFLocalMessagePort neverServed(CFSTR("VEK_KRT9"), callback, nullptr, nullptr);
    test_support::TestDriver driver;
    const LogCapture log;
    CFDataRef reply = nullptr;
    CFAbsoluteTime start = CFAbsoluteTimeGetCurrent();
    EXPECT_EQ(driver->SendMessage(kStus, nullptr, 0, true, &reply), kCFMessagePortReceiveTimeout);
    EXPECT_NEAR(CFAbsoluteTimeGetCurrent() - start, 0.01, 1e-6);
    EXPECT_EQ(reply, nullptr);

    start = CFAbsoluteTimeGetCurrent();
    EXPECT_EQ(driver->SendMessage(kStus, nullptr, 0, false, nullptr), 0);
    EXPECT_EQ(CFAbsoluteTimeGetCurrent(), start) << "no reply is awaited";
    EXPECT_THAT(log.Lines(), IsEmpty());
}

// --- The two owners of ports ---------------------------------------------------------------------

TEST_F(OutboundMessages, LocalPortHasASourceAndFreesItsNameAtItsEnd) {
    const auto callback = [](CFMessagePortRef, SInt32, CFDataRef, void*) -> CFDataRef {
        return nullptr;
    };
    {
        CACFLocalMessagePort port(CFSTR("Port of this test"), callback, nullptr, nullptr);
        EXPECT_TRUE(port.IsValid());
        EXPECT_NE(port.GetRunLoopSource(), nullptr);
        CACFRemoteMessagePort remote(CFSTR("Port of this test"), nullptr);
        EXPECT_TRUE(remote.IsValid());
    }
    CACFRemoteMessagePort remote(CFSTR("Port of this test"), nullptr);
    EXPECT_FALSE(remote.IsValid());
}

TEST_F(OutboundMessages, LocalPortCallsItsInvalidationCallbackWithItsInfo) {
    int invalidated = 0;
    {
        const auto callback = [](CFMessagePortRef, SInt32, CFDataRef, void*) -> CFDataRef {
            return nullptr;
        };
        CACFLocalMessagePort port(
            CFSTR("Port of this test"), callback,
            [](CFMessagePortRef, void* info) { ++*static_cast<int*>(info); }, &invalidated);
    }
    EXPECT_EQ(invalidated, 1);
}

TEST_F(OutboundMessages, LocalPortStaysValidToItsOwnerAfterItWasInvalidated) {
    static CFMessagePortRef callersPort;
    callersPort = nullptr;
    const auto callback = [](CFMessagePortRef port, SInt32, CFDataRef, void*) -> CFDataRef {
        callersPort = port;
        return nullptr;
    };
    const CFStringRef name = CFSTR("Port of this test");
    const CACFLocalMessagePort port(name, callback, nullptr, nullptr);
    CFRunLoopAddSource(CFRunLoopGetCurrent(), port.GetRunLoopSource(), kCFRunLoopDefaultMode);
    const CACFRemoteMessagePort remote(name, nullptr);
    const test_support::OwnedObject<CFDataRef> data = CFDataCreate(kCFAllocatorDefault, nullptr, 0);
    EXPECT_EQ(remote.SendRequest(1, data, 1.0, 0.0), 0);
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, true);
    ASSERT_NE(callersPort, nullptr);
    CFMessagePortInvalidate(callersPort);
    EXPECT_TRUE(port.IsValid()) << "it tells that the port was made, not that it still works";
}

TEST_F(OutboundMessages, RemotePortIsReleasedAtItsEndAndNotInvalidated) {
    const test_support::Companion companion;
    static int invalidated;
    invalidated = 0;
    const CFStringRef name = CFSTR("VEK_KRT9");
    // Another reference to the same port sees what becomes of it.
    const test_support::OwnedObject<CFMessagePortRef> kept =
        CFMessagePortCreateRemote(kCFAllocatorDefault, name);
    {
        const CACFRemoteMessagePort port(name, [](CFMessagePortRef, void*) { ++invalidated; });
        ASSERT_TRUE(port.IsValid());
    }
    EXPECT_EQ(invalidated, 0);
    EXPECT_TRUE(CFMessagePortIsValid(kept));
}

TEST_F(OutboundMessages, RemotePortStaysValidToItsOwnerAfterItsPeerHasGone) {
    auto companion = std::make_unique<test_support::Companion>();
    CACFRemoteMessagePort port(CFSTR("VEK_KRT9"), nullptr);
    ASSERT_TRUE(port.IsValid());
    companion.reset();
    EXPECT_TRUE(port.IsValid()) << "it tells that the port existed, not that it still does";
    CFDataRef data = CFDataCreate(kCFAllocatorDefault, nullptr, 0);
    EXPECT_NE(port.SendRequest(kStus, data, 0.0, 0.0), 0);
    CFRelease(data);
}
