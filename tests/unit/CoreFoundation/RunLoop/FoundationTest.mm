// Where Foundation meets the run loop. No test of this file expects a C++ exception: this dialect
// cannot catch one.
#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <thread>

#include "tests/unit/CoreFoundation/RunLoop/Scene.h"

@interface KRTDeallocationWitness : NSObject {
    int* count_;
}
- (id)initWithCount:(int*)count;
@end

@implementation KRTDeallocationWitness
- (id)initWithCount:(int*)count {
    self = [super init];
    if (self != nil) {
        count_ = count;
    }
    return self;
}
- (void)dealloc {
    ++*count_;
    [super dealloc];
}
@end

namespace run_loop_test {
namespace {

TEST(NSRunLoop, RunsTheTimersAndSourcesOfCoreFoundation) {
    std::thread([] {
        @autoreleasepool {
            Scene scene;
            int fires = 0;
            CFRunLoopTimerRef timer = nullptr;
            timer = scene.AddTimer(0.1, 0.1, [&] {
                if (++fires == 3) {
                    CFRunLoopTimerInvalidate(timer);
                }
            });
            [[NSRunLoop currentRunLoop] run];
            EXPECT_EQ(fires, 3) << "it returns when nothing is left";
        }
    }).join();
}

TEST(NSRunLoop, GoesOnAfterAStop) {
    std::thread([] {
        @autoreleasepool {
            Scene scene;
            int fires = 0;
            CFRunLoopTimerRef timer = nullptr;
            timer = scene.AddTimer(0.1, 0.1, [&] {
                CFRunLoopStop(scene.Loop());
                if (++fires == 3) {
                    CFRunLoopTimerInvalidate(timer);
                }
            });
            [[NSRunLoop currentRunLoop] run];
            EXPECT_EQ(fires, 3);
        }
    }).join();
}

// What the callouts before the last one left autoreleased and was given back by then.
int DeallocationsBetweenCallouts() {
    int deallocations = 0;
    int atNextCallback = -1;
    @autoreleasepool {
        Scene scene;
        const auto leave = [&] {
            [[[KRTDeallocationWitness alloc] initWithCount:&deallocations] autorelease];
        };
        scene.AddTimer(0.1, 0, leave);
        CFRunLoopSourceSignal(scene.AddSource(leave));
        scene.AddTimer(0.2, 0, [&] { atNextCallback = deallocations; });
        scene.Run(1);
    }
    return atNextCallback;
}

TEST(RunLoopPools, NoCalloutHasOneOfItsOwn) {
    EXPECT_EQ(DeallocationsBetweenCallouts(), 0);
}

TEST(RunLoopException, OfFoundationLeavesTheLoopInOrder) {
    @autoreleasepool {
        Scene scene;
        int fires = 0;
        scene.AddTimer(0.1, 0.1, [&] {
            if (++fires == 1) {
                [NSException raise:NSGenericException format:@"from timer %d", fires];
            }
        });
        NSString* caught = nil;
        @try {
            scene.Run(1);
        } @catch (NSException* exception) {
            caught = [[exception reason] copy];
        }
        EXPECT_TRUE([caught isEqual:@"from timer 1"]);
        [caught release];
        EXPECT_EQ(CFRunLoopCopyCurrentMode(scene.Loop()), nullptr);
        EXPECT_EQ(scene.Run(0.35), kCFRunLoopRunTimedOut);
        EXPECT_EQ(fires, 4);
    }
}

TEST(RunLoopObjects, AreFoundationObjects) {
    Scene scene;
    const CFRunLoopTimerRef timer = scene.MakeTimer(1, 0, [] {});
    @autoreleasepool {
        NSMutableArray* array = [NSMutableArray arrayWithObject:(id)timer];
        EXPECT_EQ(CFGetRetainCount(timer), 2);
        [array removeAllObjects];
    }
    EXPECT_EQ(CFGetRetainCount(timer), 1);
    EXPECT_EQ(CFGetTypeID(timer), CFRunLoopTimerGetTypeID());
}

}  // namespace
}  // namespace run_loop_test
