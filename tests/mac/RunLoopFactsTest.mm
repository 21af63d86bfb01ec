// The run loop and the message port of macOS, where their documentation leaves room.
#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <csignal>
#include <ctime>
#include <functional>
#include <thread>
#include <vector>

#include "tests/mac/Finding.h"
#include "tests/support/OwnedObject.h"

using mac_test::ExpectAsInLayer;
using test_support::OwnedObject;

namespace {

int deallocated = 0;
volatile std::sig_atomic_t signalled = 0;

extern "C" void NoteSignal(int) {
    signalled = 1;
}

void CallFunction(CFRunLoopTimerRef, void* info) {
    (*static_cast<std::function<void()>*>(info))();
}

// Runs the loop until each function was called by a timer of its own, in their order.
void RunTimers(std::vector<std::function<void()>> functions) {
    std::vector<OwnedObject<CFRunLoopTimerRef>> timers;
    double after = 0.05;
    for (std::function<void()>& function : functions) {
        CFRunLoopTimerContext context = {};
        context.info = &function;
        timers.emplace_back(CFRunLoopTimerCreate(nullptr, CFAbsoluteTimeGetCurrent() + after, 0, 0,
                                                 0, CallFunction, &context));
        CFRunLoopAddTimer(CFRunLoopGetCurrent(), timers.back(), kCFRunLoopDefaultMode);
        after += 0.05;
    }
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, after + 0.2, false);
}

CFDataRef ReplyWithNothing(CFMessagePortRef, SInt32, CFDataRef, void*) {
    return nullptr;
}

}  // namespace

@interface KRTDeallocationCounter : NSObject
@end

@implementation KRTDeallocationCounter
- (void)dealloc {
    ++deallocated;
    [super dealloc];
}
@end

TEST(RunLoopOnMac, ReportsWhetherACalloutHasAPool) {
    bool drained = false;
    // A thread without a pool of its own: what is autoreleased there has nowhere else to go.
    std::thread([&drained] {
        RunTimers({[] { [[[KRTDeallocationCounter alloc] init] autorelease]; },
                   [&drained] { drained = deallocated > 0; }});
    }).join();
    mac_test::Report("does a run loop drain a pool around a timer's callback",
                     drained ? "yes" : "no, as in the layer");
}

TEST(RunLoopOnMac, LetsASignalInWhileACallbackRuns) {
    bool duringCallback = false;
    std::signal(SIGUSR1, NoteSignal);
    RunTimers({[&duringCallback] {
        std::raise(SIGUSR1);
        duringCallback = signalled != 0;
    }});
    std::signal(SIGUSR1, SIG_DFL);
    mac_test::Report("does a signal's handler run in the middle of a callback",
                     duringCallback ? "yes" : "no");
    EXPECT_TRUE(duringCallback) << "signals wait: nothing documents that";
}

// Requests that wait for no reply are queued while the receiver does not run its loop.
TEST(PortOnMac, FullQueueIsASendTimeout) {
    const OwnedObject<CFMessagePortRef> local(CFMessagePortCreateLocal(
        nullptr, CFSTR("KRT9QueueDepthTest"), ReplyWithNothing, nullptr, nullptr));
    const OwnedObject<CFMessagePortRef> remote(
        CFMessagePortCreateRemote(nullptr, CFSTR("KRT9QueueDepthTest")));
    ASSERT_NE(local.get(), nullptr);
    ASSERT_NE(remote.get(), nullptr);
    const OwnedObject<CFRunLoopSourceRef> source(
        CFMessagePortCreateRunLoopSource(nullptr, local, 0));
    int accepted = 0;
    constexpr int kMany = 100;
    SInt32 status = kCFMessagePortSuccess;
    while (accepted < kMany && status == kCFMessagePortSuccess) {
        status = CFMessagePortSendRequest(remote, accepted, nullptr, 0.01, 0, nullptr, nullptr);
        accepted += status == kCFMessagePortSuccess ? 1 : 0;
    }
    EXPECT_EQ(status, kCFMessagePortSendTimeout);
    ExpectAsInLayer("how many messages a port queues", accepted, 5);
    CFMessagePortInvalidate(local);
}
