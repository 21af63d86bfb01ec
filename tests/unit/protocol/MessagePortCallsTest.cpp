// The calls of the two owners of ports and of SendMessage to the framework, argument by
// argument.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "VEKCommon/MessageCodes.h"
#include "platform/Testing/LiveObjects.h"
#include "protocol/CACFMessagePort.h"
#include "tests/support/DriverInspector.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TestDriver.h"
#include "tests/unit/protocol/FakeMessagePort.h"

namespace {

using fake_message_port::Ports;
using fake_message_port::ThePorts;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

CFDataRef Callback(CFMessagePortRef, SInt32, CFDataRef, void*) {
    return nullptr;
}
void Invalidated(CFMessagePortRef, void*) {}

class MessagePortCalls : public testing::Test {
  protected:
    MessagePortCalls() { ThePorts() = Ports(); }
    ~MessagePortCalls() override {
        for (const CFTypeRef object : ThePorts().objects) {
            EXPECT_EQ(CFGetRetainCount(object), 1) << "its owner has released it";
            CFRelease(object);
        }
        ThePorts() = Ports();
    }

    platform_testing::AutoreleasePool pool_;
    test_support::SessionFixture session_;
};

class SendMessage : public MessagePortCalls {
  protected:
    SendMessage() { ThePorts().sent.clear(); }

    CFMessagePortRef RemotePort() const {
        return (CFMessagePortRef)*std::ranges::find_if(ThePorts().objects, [](CFTypeRef object) {
            return CFGetTypeID(object) == CFStringGetTypeID() && CFEqual(object, CFSTR("VEK_KRT9"));
        });
    }

    test_support::TestDriver driver_;
};

}  // namespace

TEST_F(MessagePortCalls, LocalPortIsCreatedWithItsCallbackAndAContextOfItsInfoAlone) {
    int info = 0;
    {
        const CACFLocalMessagePort port(CFSTR("name"), Callback, Invalidated, &info);
        EXPECT_TRUE(port.IsValid());
        EXPECT_EQ(port.GetRunLoopSource(), ThePorts().objects.back());
    }
    EXPECT_THAT(ThePorts().calls, ElementsAre("local name", "set invalidation callback",
                                              "source with order 0", "invalidate"));
    EXPECT_THAT(ThePorts().invalidationCallbacks, ElementsAre(Invalidated));
    const auto& created = ThePorts().created.at(0);
    EXPECT_EQ(created.allocator, nullptr);
    EXPECT_EQ(created.callback, Callback);
    EXPECT_EQ(created.shouldFreeInfo, nullptr);
    ASSERT_TRUE(created.context.has_value());
    EXPECT_EQ(created.context->version, 0);
    EXPECT_EQ(created.context->info, &info);
    EXPECT_EQ(created.context->retain, nullptr);
    EXPECT_EQ(created.context->release, nullptr);
    EXPECT_EQ(created.context->copyDescription, nullptr);
}

TEST_F(MessagePortCalls, LocalPortWithoutInvalidationCallbackSetsNone) {
    const CACFLocalMessagePort port(CFSTR("name"), Callback, nullptr, nullptr);
    EXPECT_THAT(ThePorts().calls, ElementsAre("local name", "source with order 0"));
}

TEST_F(MessagePortCalls, RemotePortSetsItsInvalidationCallbackAndIsNeverInvalidated) {
    { const CACFRemoteMessagePort port(CFSTR("name"), Invalidated); }
    EXPECT_THAT(ThePorts().calls,
                ElementsAre("remote name", "set invalidation callback", "source with order 0"));
    EXPECT_THAT(ThePorts().invalidationCallbacks, ElementsAre(Invalidated));
    EXPECT_EQ(ThePorts().created.at(0).allocator, nullptr);
}

TEST_F(MessagePortCalls, RemotePortWithoutInvalidationCallbackSetsNone) {
    const CACFRemoteMessagePort port(CFSTR("name"), nullptr);
    EXPECT_THAT(ThePorts().calls, ElementsAre("remote name", "source with order 0"));
}

TEST_F(MessagePortCalls, PortsThatCannotBeMadeGetNeitherCallbackNorSource) {
    ThePorts().makesNone = true;
    {
        const CACFLocalMessagePort local(CFSTR("a"), Callback, Invalidated, nullptr);
        const CACFRemoteMessagePort remote(CFSTR("b"), Invalidated);
        EXPECT_FALSE(local.IsValid());
        EXPECT_EQ(local.GetRunLoopSource(), nullptr);
        EXPECT_FALSE(remote.IsValid());
    }
    EXPECT_THAT(ThePorts().calls, ElementsAre("local a", "remote b"));
}

TEST_F(MessagePortCalls, DriverMakesItsPortsWithoutInvalidationCallbackAndInfo) {
    { test_support::TestDriver driver; }
    EXPECT_THAT(ThePorts().calls,
                ElementsAre("local KRT9Background", "source with order 0", "remote VEK_KRT9",
                            "source with order 0", "invalidate"));
    EXPECT_EQ(ThePorts().created[0].callback, &CVEK_UserSpaceDriver::MessageCallbackEntry);
    ASSERT_TRUE(ThePorts().created[0].context.has_value());
    EXPECT_EQ(ThePorts().created[0].context->info, nullptr);
}

TEST_F(MessagePortCalls, RemotePortPassesEveryArgumentAndTheStatusOn) {
    const CACFRemoteMessagePort port(CFSTR("name"), nullptr);
    const unsigned char bytes[] = {1, 2};
    const CFDataRef data = CFDataCreate(nullptr, bytes, 2);
    CFDataRef reply = nullptr;
    ThePorts().status = -4;
    EXPECT_EQ(port.SendRequest(-7, data, 1.5, 2.5, CFSTR("a mode"), reply), -4);
    ThePorts().status = 3;
    EXPECT_EQ(port.SendRequest(8, data, 3.5, 4.5), 3);
    CFRelease(data);

    ASSERT_EQ(ThePorts().sent.size(), 2u);
    const auto& awaited = ThePorts().sent[0];
    EXPECT_EQ(awaited.port, ThePorts().objects[0]);
    EXPECT_EQ(awaited.code, -7);
    EXPECT_THAT(awaited.body, Optional(ElementsAre(1, 2)));
    EXPECT_EQ(awaited.sendTimeout, 1.5);
    EXPECT_EQ(awaited.receiveTimeout, 2.5);
    EXPECT_TRUE(CFEqual(awaited.replyMode, CFSTR("a mode")));
    EXPECT_TRUE(awaited.hasPlaceForReply);
    const auto& notAwaited = ThePorts().sent[1];
    EXPECT_EQ(notAwaited.sendTimeout, 3.5);
    EXPECT_EQ(notAwaited.receiveTimeout, 4.5);
    EXPECT_EQ(notAwaited.replyMode, nullptr);
    EXPECT_FALSE(notAwaited.hasPlaceForReply);
}

TEST_F(SendMessage, WaitsTenMillisecondsToSendAndTenForTheReplyInTheDefaultMode) {
    CFDataRef reply = nullptr;
    EXPECT_EQ(driver_->SendMessage(kStus, nullptr, 0, true, &reply), 0);
    ASSERT_EQ(ThePorts().sent.size(), 1u);
    EXPECT_EQ(ThePorts().sent[0].port, RemotePort());
    EXPECT_EQ(ThePorts().sent[0].code, kStus);
    EXPECT_EQ(ThePorts().sent[0].sendTimeout, 0.01);
    EXPECT_EQ(ThePorts().sent[0].receiveTimeout, 0.01);
    EXPECT_EQ(ThePorts().sent[0].replyMode, kCFRunLoopDefaultMode);
    EXPECT_TRUE(ThePorts().sent[0].hasPlaceForReply);
}

TEST_F(SendMessage, WaitsTenMillisecondsToSendAndForNoReplyWhenNoneIsWantedOrHasAPlace) {
    CFDataRef reply = nullptr;
    driver_->SendMessage(kJSLg, nullptr, 0, false, nullptr);
    driver_->SendMessage(kJSLg, nullptr, 0, false, &reply);
    driver_->SendMessage(kJSLg, nullptr, 0, true, nullptr);
    ASSERT_EQ(ThePorts().sent.size(), 3u);
    for (const auto& sent : ThePorts().sent) {
        EXPECT_EQ(sent.sendTimeout, 0.01);
        EXPECT_EQ(sent.receiveTimeout, 0.0);
        EXPECT_EQ(sent.replyMode, nullptr);
        EXPECT_FALSE(sent.hasPlaceForReply);
    }
}

TEST_F(SendMessage, MessageWithoutBodyCarriesEmptyDataNotNone) {
    driver_->SendMessage(kStus, nullptr, 0, false, nullptr);
    EXPECT_THAT(ThePorts().sent.at(0).body, Optional(IsEmpty()));
}

TEST_F(SendMessage, BodyIsAsLongAsItsLengthSays) {
    unsigned char bytes[] = {1, 2, 3};
    driver_->SendMessage(kJFSC, bytes, 2, false, nullptr);
    EXPECT_THAT(ThePorts().sent.at(0).body, Optional(ElementsAre(1, 2)));
}

TEST_F(SendMessage, ReturnsTheStatusOfTheSend) {
    for (const SInt32 status : {0, -1, -2, -3, -4, -5}) {
        ThePorts().status = status;
        CFDataRef reply = nullptr;
        EXPECT_EQ(driver_->SendMessage(kStus, nullptr, 0, false, nullptr), status);
        EXPECT_EQ(driver_->SendMessage(kStus, nullptr, 0, true, &reply), status);
    }
}

TEST_F(SendMessage, LeavesNothingOverWhateverBecomesOfIt) {
    for (const SInt32 status : {0, -1, -5}) {
        ThePorts().status = status;
        unsigned char bytes[100] = {};
        EXPECT_EQ(platform_testing::LeftOverBy(
                      [&] { driver_->SendMessage(kJFSC, bytes, sizeof bytes, false, nullptr); }),
                  "");
    }
}

TEST_F(SendMessage, LanguageTagIsSentWithItsTerminatorAndNoReplyIsAwaited) {
    EXPECT_TRUE(driver_->GetLocale());
    ASSERT_EQ(ThePorts().sent.size(), 1u);
    EXPECT_EQ(ThePorts().sent[0].code, kJSLg);
    EXPECT_EQ(ThePorts().sent[0].body.value().size(), sizeof "VEKLanguage");
    EXPECT_FALSE(ThePorts().sent[0].hasPlaceForReply);
    ThePorts().status = -1;
    EXPECT_TRUE(driver_->GetLocale()) << "whether or not it was sent";
}

TEST_F(SendMessage, StatusQueryHasNoBodyAndWaitsForItsReplyWhichItReleases) {
    const unsigned char bytes[28] = {0, 0, 0, 5, 0, 0, 0, 6};
    const CFDataRef reply = CFDataCreate(nullptr, bytes, sizeof bytes);
    ThePorts().reply = reply;
    driver_->RequestKRTStatus();
    EXPECT_EQ(CVEK_UserSpaceDriver::GetUnitCount(), 5);
    EXPECT_EQ(CFGetRetainCount(reply), 1);
    const CFDataRef empty = CFDataCreate(nullptr, nullptr, 0);
    ThePorts().reply = empty;
    driver_->RequestKRTStatus();
    EXPECT_EQ(CFGetRetainCount(empty), 1) << "released in any case";
    ASSERT_EQ(ThePorts().sent.size(), 2u);
    EXPECT_EQ(ThePorts().sent[0].code, kStus);
    EXPECT_THAT(ThePorts().sent[0].body, Optional(IsEmpty()));
    EXPECT_TRUE(ThePorts().sent[0].hasPlaceForReply);
    EXPECT_EQ(ThePorts().sent[0].receiveTimeout, 0.01);
    ThePorts().reply = nullptr;
    CFRelease(reply);
    CFRelease(empty);
}
