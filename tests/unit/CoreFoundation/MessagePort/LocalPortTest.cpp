#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <vector>

#include "VEKCommon/OwnedReference.h"
#include "platform/Testing/LogCapture.h"
#include "tests/support/SessionFixture.h"
#include "tests/unit/CoreFoundation/MessagePort/Ports.h"

namespace message_port_test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

CFDataRef Ignore(CFMessagePortRef, SInt32, CFDataRef, void*) {
    return nullptr;
}

class LocalPortTest : public testing::Test {
  protected:
    static CFMessagePortRef Create(CFStringRef name, Boolean* shouldFreeInfo = nullptr) {
        return CFMessagePortCreateLocal(kCFAllocatorDefault, name, Ignore, nullptr, shouldFreeInfo);
    }

    test_support::SessionFixture session_;
};

TEST_F(LocalPortTest, PortWithoutRequestsWakesNobody) {
    const Server server("port", Echo);
    static int waits = 0;
    waits = 0;
    const OwnedReference<CFRunLoopObserverRef> observer(CFRunLoopObserverCreate(
        kCFAllocatorDefault, kCFRunLoopBeforeWaiting, true, 0,
        [](CFRunLoopObserverRef, CFRunLoopActivity, void*) { ++waits; }, nullptr));
    CFRunLoopAddObserver(CFRunLoopGetCurrent(), observer.get(), kCFRunLoopDefaultMode);
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, false);
    CFRunLoopObserverInvalidate(observer.get());
    EXPECT_EQ(waits, 1);
}

TEST_F(LocalPortTest, NewPortIsValidAndHasItsName) {
    Boolean shouldFreeInfo = true;
    const CFMessagePortRef port = Create(CFSTR("KRT9Background"), &shouldFreeInfo);
    ASSERT_NE(port, nullptr);
    EXPECT_FALSE(shouldFreeInfo);
    EXPECT_TRUE(CFMessagePortIsValid(port));
    EXPECT_TRUE(CFEqual(CFMessagePortGetName(port), CFSTR("KRT9Background")));
    EXPECT_EQ(CFGetTypeID(port), CFMessagePortGetTypeID());
    EXPECT_EQ(CFGetRetainCount(port), 1);
    EXPECT_THAT(session_.Files(), ElementsAre("KRT9Background"));
    CFRelease(port);
}

TEST_F(LocalPortTest, NothingIsLeftOfAnInvalidatedPort) {
    const CFMessagePortRef port = Create(CFSTR("port"));
    CFMessagePortInvalidate(port);
    EXPECT_FALSE(CFMessagePortIsValid(port));
    EXPECT_THAT(session_.Files(), IsEmpty());
    CFMessagePortInvalidate(port);
    CFMessagePortInvalidate(nullptr);
    CFRelease(port);
}

TEST_F(LocalPortTest, NothingIsLeftOfAReleasedPort) {
    const CFMessagePortRef port = Create(CFSTR("port"));
    CFRelease(port);
    EXPECT_THAT(session_.Files(), IsEmpty());
    EXPECT_EQ(Client("port").Port(), nullptr);
}

TEST_F(LocalPortTest, ReleasedPortIsForgottenByTheRunLoopThatHoldsItsSource) {
    const CFMessagePortRef port = Create(CFSTR("port"));
    const CFRunLoopSourceRef source =
        CFMessagePortCreateRunLoopSource(kCFAllocatorDefault, port, 0);
    CFRunLoopAddSource(CFRunLoopGetCurrent(), source, kCFRunLoopCommonModes);
    CFRelease(port);
    EXPECT_FALSE(CFRunLoopSourceIsValid(source));
    EXPECT_THAT(session_.Files(), IsEmpty());
    RunPasses();
    CFRelease(source);
}

TEST_F(LocalPortTest, NameServedInThisProcessAnswersTheSamePort) {
    const Server server("port", [](SInt32, const std::string&) { return "first"; });
    Boolean shouldFreeInfo = false;
    const CFMessagePortRef again = Create(CFSTR("port"), &shouldFreeInfo);
    EXPECT_EQ(again, server.Port());
    EXPECT_TRUE(shouldFreeInfo);
    EXPECT_EQ(CFGetRetainCount(again), 2);
    CFRelease(again);
    const Client client("port");
    EXPECT_EQ(client.Ask("who").reply, "first") << "the callback was replaced";
}

TEST_F(LocalPortTest, NameIsFreeAgainAfterInvalidation) {
    const CFMessagePortRef first = Create(CFSTR("port"));
    CFMessagePortInvalidate(first);
    const CFMessagePortRef second = Create(CFSTR("port"));
    EXPECT_NE(second, first);
    EXPECT_TRUE(CFMessagePortIsValid(second));
    CFRelease(first);
    EXPECT_THAT(session_.Files(), ElementsAre("port")) << "the old port took the new one's file";
    CFRelease(second);
}

TEST_F(LocalPortTest, RefusedFolderGivesNoPortAndOneLine) {
    ASSERT_EQ(chmod(session_.Path().c_str(), 0755), 0);
    const platform_testing::LogCapture log;
    Boolean shouldFreeInfo = false;
    EXPECT_EQ(Create(CFSTR("port"), &shouldFreeInfo), nullptr);
    EXPECT_TRUE(shouldFreeInfo);
    EXPECT_THAT(log.ConsoleTexts(), ElementsAre(HasSubstr("has mode 0755 instead of 0700")));
}

TEST_F(LocalPortTest, AnyTextIsAName) {
    for (const std::string name :
         {"a/b", "..", ".", "/", "../../etc/x", "#binding", "\xc3\xa9", " ", "\n"}) {
        const Server server(name, Echo);
        ASSERT_NE(server.Port(), nullptr) << name;
        const Client client(name);
        ASSERT_NE(client.Port(), nullptr) << name;
        EXPECT_EQ(client.Ask("x").reply, "x") << name;
    }
    EXPECT_THAT(session_.Files(), IsEmpty());
}

TEST_F(LocalPortTest, NameIsCutAt128Bytes) {
    const std::string longest(128, 'n');
    const Server server(longest + std::string(127, 'x'), Echo);
    ASSERT_NE(server.Port(), nullptr);
    const Client sameBeginning(longest + "y");
    ASSERT_NE(sameBeginning.Port(), nullptr);
    EXPECT_EQ(sameBeginning.Ask("x").reply, "x");
    EXPECT_EQ(Client(std::string(127, 'n')).Port(), nullptr);
}

TEST_F(LocalPortTest, CutLeavesNoHalfCharacterInTheName) {
    const std::string beginning(127, 'n');
    const Server server(beginning + "\xc3\xa9", Echo);
    ASSERT_NE(server.Port(), nullptr);
    EXPECT_EQ(CFStringGetLength(CFMessagePortGetName(server.Port())), 127);
    EXPECT_NE(Client(beginning).Port(), nullptr);
}

TEST_F(LocalPortTest, NameThatCannotBeOneLeavesThePortWithoutAName) {
    const UniChar withNul[] = {'a', 0, 'b'};
    const UniChar halfPair[] = {'a', 0xD83C, 'b'};
    for (const UniChar* characters : {withNul, halfPair}) {
        const CFStringRef name = CFStringCreateWithCharacters(kCFAllocatorDefault, characters, 3);
        const CFMessagePortRef port = Create(name);
        ASSERT_NE(port, nullptr);
        EXPECT_EQ(CFMessagePortGetName(port), nullptr);
        EXPECT_TRUE(CFMessagePortIsValid(port));
        EXPECT_EQ(CFMessagePortCreateRemote(kCFAllocatorDefault, name), nullptr);
        CFRelease(port);
        CFRelease(name);
    }
    EXPECT_THAT(session_.Files(), IsEmpty());
}

TEST_F(LocalPortTest, PortWithoutANameHasASourceThatStaysQuiet) {
    const CFMessagePortRef port = Create(nullptr);
    ASSERT_NE(port, nullptr);
    const CFRunLoopSourceRef source =
        CFMessagePortCreateRunLoopSource(kCFAllocatorDefault, port, 0);
    CFRunLoopAddSource(CFRunLoopGetCurrent(), source, kCFRunLoopCommonModes);
    RunPasses();
    CFRelease(port);
    CFRelease(source);
}

TEST_F(LocalPortTest, HasOneSource) {
    const CFMessagePortRef port = Create(CFSTR("port"));
    const CFRunLoopSourceRef first = CFMessagePortCreateRunLoopSource(nullptr, port, 0);
    const CFRunLoopSourceRef second = CFMessagePortCreateRunLoopSource(nullptr, port, 7);
    EXPECT_EQ(first, second);
    CFRelease(second);
    CFMessagePortInvalidate(port);
    EXPECT_FALSE(CFRunLoopSourceIsValid(first));
    EXPECT_EQ(CFMessagePortCreateRunLoopSource(nullptr, port, 0), nullptr);
    CFRelease(first);
    CFRelease(port);
}

TEST_F(LocalPortTest, ServesAgainThroughANewSourceWhenItsSourceWasInvalidated) {
    const Server server("port", Echo);
    const Client client("port");
    EXPECT_EQ(client.Ask("before").reply, "before");
    const CFRunLoopSourceRef old = CFMessagePortCreateRunLoopSource(nullptr, server.Port(), 0);
    CFRunLoopSourceInvalidate(old);
    const CFRunLoopSourceRef source = CFMessagePortCreateRunLoopSource(nullptr, server.Port(), 0);
    EXPECT_NE(source, old);
    CFRunLoopAddSource(CFRunLoopGetCurrent(), source, kCFRunLoopCommonModes);
    EXPECT_EQ(client.Ask("after").reply, "after");
    CFRelease(source);
    CFRelease(old);
}

// What happens to a context, in order.
struct Events {
    std::vector<std::string> names;
};

CFMessagePortContext ContextFor(Events& events) {
    CFMessagePortContext context{};
    context.info = &events;
    context.retain = [](const void* info) {
        static_cast<Events*>(const_cast<void*>(info))->names.push_back("retain");
        return info;
    };
    context.release = [](const void* info) {
        static_cast<Events*>(const_cast<void*>(info))->names.push_back("release");
    };
    return context;
}

void NoteInvalidation(CFMessagePortRef, void* info) {
    static_cast<Events*>(info)->names.push_back("invalidated");
}

TEST_F(LocalPortTest, InvalidationCallsBackOnceAndThenReleasesTheInfo) {
    Events events;
    CFMessagePortContext context = ContextFor(events);
    const CFMessagePortRef port =
        CFMessagePortCreateLocal(nullptr, CFSTR("port"), Ignore, &context, nullptr);
    CFMessagePortSetInvalidationCallBack(port, NoteInvalidation);
    CFMessagePortInvalidate(port);
    CFMessagePortInvalidate(port);
    CFRelease(port);
    EXPECT_THAT(events.names, ElementsAre("retain", "invalidated", "release"));
}

TEST_F(LocalPortTest, LastReleaseCallsBackToo) {
    Events events;
    CFMessagePortContext context = ContextFor(events);
    const CFMessagePortRef port =
        CFMessagePortCreateLocal(nullptr, CFSTR("port"), Ignore, &context, nullptr);
    CFMessagePortSetInvalidationCallBack(port, [](CFMessagePortRef dying, void* info) {
        CFRetain(dying);
        NoteInvalidation(dying, info);
        CFRelease(dying);
    });
    CFRelease(port);
    EXPECT_THAT(events.names, ElementsAre("retain", "invalidated", "release"));
}

TEST_F(LocalPortTest, CallbackSetOnAnInvalidPortIsCalledAtOnce) {
    static int calls = 0;
    const CFMessagePortRef port = Create(CFSTR("port"));
    CFMessagePortInvalidate(port);
    CFMessagePortSetInvalidationCallBack(port, [](CFMessagePortRef, void*) { ++calls; });
    EXPECT_EQ(calls, 1);
    CFMessagePortSetInvalidationCallBack(port, nullptr);
    EXPECT_EQ(calls, 1);
    CFRelease(port);
}

TEST_F(LocalPortTest, InfoIsRetainedAroundTheCallback) {
    Events events;
    CFMessagePortContext context = ContextFor(events);
    const CFMessagePortRef port = CFMessagePortCreateLocal(
        nullptr, CFSTR("port"),
        [](CFMessagePortRef, SInt32, CFDataRef, void* info) -> CFDataRef {
            static_cast<Events*>(info)->names.push_back("request");
            return nullptr;
        },
        &context, nullptr);
    const CFRunLoopSourceRef source = CFMessagePortCreateRunLoopSource(nullptr, port, 0);
    CFRunLoopAddSource(CFRunLoopGetCurrent(), source, kCFRunLoopCommonModes);
    Client("port").Ask("x");
    CFMessagePortInvalidate(port);
    CFRelease(source);
    CFRelease(port);
    EXPECT_THAT(events.names, ElementsAre("retain", "retain", "request", "release", "release"));
}

TEST_F(LocalPortTest, ContextThatOnlyRetainsIsNeverReleased) {
    Events events;
    CFMessagePortContext context = ContextFor(events);
    context.release = nullptr;
    const CFMessagePortRef port =
        CFMessagePortCreateLocal(nullptr, CFSTR("port"), Ignore, &context, nullptr);
    const CFRunLoopSourceRef source = CFMessagePortCreateRunLoopSource(nullptr, port, 0);
    CFRunLoopAddSource(CFRunLoopGetCurrent(), source, kCFRunLoopCommonModes);
    EXPECT_EQ(Client("port").Ask("x").reply, "");
    CFMessagePortInvalidate(port);
    CFRelease(source);
    CFRelease(port);
    EXPECT_THAT(events.names, ElementsAre("retain", "retain"));
}

}  // namespace
}  // namespace message_port_test
