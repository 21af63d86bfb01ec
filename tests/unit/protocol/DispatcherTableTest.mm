// What the dispatcher does with a request before any operation begins, by its table alone: on
// macOS, too, where a test does not control the desktop. No body here is complete, so nothing is
// posted, pressed or moved.
#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include "VEKCommon/MessageCodes.h"
#include "tests/support/OwnedObject.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TestDriver.h"
#include "tests/unit/protocol/Bytes.h"

namespace {

using test_support::OwnedObject;

class Pool {
  public:
    Pool() : pool_([[NSAutoreleasePool alloc] init]) {}
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;
    ~Pool() { [pool_ release]; }

  private:
    NSAutoreleasePool* pool_;
};

class DispatcherTable : public testing::Test {
  protected:
    OwnedObject<CFDataRef> Ask(SInt32 code, const Bytes& body) {
        const OwnedObject<CFDataRef> data(
            CFDataCreate(kCFAllocatorDefault, body.data(), static_cast<CFIndex>(body.size())));
        return driver_->MessageCallback(nullptr, code, data, nullptr);
    }

  private:
    Pool pool_;
    test_support::SessionFixture session_;
    test_support::TestDriver driver_;
};

TEST_F(DispatcherTable, NoRequestIsServedWithABodyCutShort) {
    const SInt32 withBody[] = {kJAcF, kJBtP, kJCPK, kJEPp, kJESI, kJElP, kJElV, kJGRV,
                               kJPMC, kJPME, kJPMS, kJSIS, kJSRV, kJTWP, kJWiP};
    for (const SInt32 code : withBody) {
        EXPECT_EQ(Ask(code, {}).get(), nullptr) << code;
        EXPECT_EQ(Ask(code, {1, 0, 0}).get(), nullptr) << code;
    }
}

TEST_F(DispatcherTable, AnUnknownCodeHasNoReply) {
    EXPECT_EQ(Ask(0, Integers({1, 2, 3, 4})).get(), nullptr);
    EXPECT_EQ(Ask(FourCharacterCode("JElv"), Integers({59})).get(), nullptr);
}

TEST_F(DispatcherTable, ThePointersPositionNeedsNoBodyAndIsEightBytes) {
    const OwnedObject<CFDataRef> reply = Ask(kJGlM, {});
    ASSERT_NE(reply.get(), nullptr);
    EXPECT_EQ(CFDataGetLength(reply.get()), 8);
}

TEST_F(DispatcherTable, APingHasNoReply) {
    EXPECT_EQ(Ask(kJPth, {}).get(), nullptr);
}

}  // namespace
