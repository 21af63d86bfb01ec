#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>

#include "platform/Testing/LiveObjects.h"

namespace {

using platform_testing::AutoreleasePool;
using platform_testing::Growth;
using platform_testing::LeftOverBy;
using platform_testing::LiveObjects;
using platform_testing::LiveObjectTotal;
using platform_testing::ObjectCounts;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

CFNumberRef NewNumber() {
    const int value = 4711;
    return CFNumberCreate(kCFAllocatorDefault, kCFNumberIntType, &value);
}

TEST(LiveObjects, CountAnObjectOfOurOwnClassUntilItIsReleased) {
    const ObjectCounts before = LiveObjects();
    const long totalBefore = LiveObjectTotal();
    CFNumberRef number = NewNumber();
    EXPECT_THAT(Growth(before, LiveObjects()), ElementsAre(Pair("TypedNumber", 1)));
    EXPECT_EQ(LiveObjectTotal(), totalBefore + 1);
    CFRelease(number);
    EXPECT_THAT(Growth(before, LiveObjects()), IsEmpty());
}

TEST(LiveObjects, CountAFoundationObjectUntilItIsReleased) {
    const ObjectCounts before = LiveObjects();
    const UInt8 bytes[] = {1, 2, 3};
    CFDataRef data = CFDataCreate(kCFAllocatorDefault, bytes, sizeof bytes);
    EXPECT_EQ(Growth(before, LiveObjects()).size(), 1U);
    CFRelease(data);
    EXPECT_THAT(Growth(before, LiveObjects()), IsEmpty());
}

TEST(LiveObjects, DoNotHoldConstantsAndImmortals) {
    const ObjectCounts before = LiveObjects();
    CFRetain(CFSTR("a constant of this test alone"));
    CFRetain(kCFBooleanTrue);
    CFRetain(kCFNull);
    EXPECT_THAT(Growth(before, LiveObjects()), IsEmpty());
}

TEST(LeftOverBy, IsNothingWhenEveryObjectIsReleased) {
    EXPECT_EQ(LeftOverBy([] { CFRelease(NewNumber()); }), "");
}

TEST(LeftOverBy, NamesTheClassAndTheNumberOfLeakedObjects) {
    std::vector<CFNumberRef> leaked;
    EXPECT_EQ(LeftOverBy([&leaked] { leaked.push_back(NewNumber()); }, 3), "TypedNumber +3");
    for (CFNumberRef number : leaked) {
        CFRelease(number);
    }
}

TEST(LeftOverBy, DoesNotCountWhatAPoolFrees) {
    EXPECT_EQ(LeftOverBy([] {
                  CFStringRef text = CFStringCreateWithFormat(
                      kCFAllocatorDefault, nullptr, CFSTR("a text of some length: %d"), 4711);
                  CFRelease(CFCopyDescription(text));
                  CFRelease(text);
              }),
              "");
}

}  // namespace
