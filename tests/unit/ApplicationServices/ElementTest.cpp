#include <ApplicationServices/ApplicationServices.h>
#include <gtest/gtest.h>

#include <cmath>

#include "platform/ApplicationServices/Element.h"
#include "platform/Testing/LiveObjects.h"
#include "tests/support/OwnedObject.h"
#include "tests/support/ScriptedDesktop.h"

namespace {

using application_services::CreateElement;
using application_services::ReferenceOf;
using application_services::TimeoutOf;
using desktop_link::Reply;
using desktop_link::Request;
using test_support::ScriptedDesktop;
using OwnedElement = test_support::OwnedObject<AXUIElementRef>;

// Puts the process's time-out back.
class ElementTimeout : public testing::Test {
  protected:
    ~ElementTimeout() override {
        const OwnedElement system = AXUIElementCreateSystemWide();
        AXUIElementSetMessagingTimeout(system, 0);
    }
};

std::optional<Reply> Succeed(const Request&) {
    return Reply{};
}

TEST(Element, OfAnApplicationIsMadeForAnyProcessIdWithoutContact) {
    ScriptedDesktop desktop(Succeed);
    for (const pid_t pid : {501, 0, -1}) {
        const OwnedElement element = AXUIElementCreateApplication(pid);
        ASSERT_NE(element.get(), nullptr);
        EXPECT_EQ(ReferenceOf(element).pid, pid);
    }
    EXPECT_TRUE(desktop.Exchanges().empty());
}

TEST(Element, ObjectsOfOneControlAreEqualAndHashAlike) {
    const OwnedElement element = CreateElement({501, 12});
    const OwnedElement same = CreateElement({501, 12});
    const OwnedElement other = CreateElement({501, 13});
    const OwnedElement elsewhere = CreateElement({502, 12});
    EXPECT_NE(element.get(), same.get());
    EXPECT_TRUE(CFEqual(element.get(), same.get()));
    EXPECT_EQ(CFHash(element.get()), CFHash(same.get()));
    EXPECT_FALSE(CFEqual(element.get(), other.get()));
    EXPECT_FALSE(CFEqual(element.get(), elsewhere.get()));
    EXPECT_FALSE(CFEqual(element.get(), CFSTR("text")));
}

TEST(Element, OfTheApplicationEqualsTheOneMadeFromItsProcessId) {
    const OwnedElement made = AXUIElementCreateApplication(501);
    const OwnedElement answered = CreateElement({501, 0});
    EXPECT_TRUE(CFEqual(made.get(), answered.get()));
}

TEST(Element, EqualElementsAreOneKeyOfADictionary) {
    const OwnedElement element = CreateElement({501, 12});
    const OwnedElement same = CreateElement({501, 12});
    const test_support::OwnedObject<CFMutableDictionaryRef> dictionary = CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    CFDictionarySetValue(dictionary, element.get(), CFSTR("found"));
    EXPECT_EQ(CFDictionaryGetValue(dictionary, same.get()), CFSTR("found"));
}

TEST(Element, IsATypeOfItsOwn) {
    const OwnedElement element = AXUIElementCreateApplication(501);
    EXPECT_EQ(CFGetTypeID(element.get()), AXUIElementGetTypeID());
    EXPECT_NE(AXUIElementGetTypeID(), CFStringGetTypeID());
}

TEST(Element, TellsItsProcessWithoutAskingIt) {
    ScriptedDesktop desktop(Succeed);
    const OwnedElement element = CreateElement({777, 12});
    const OwnedElement application = AXUIElementCreateApplication(-1);
    pid_t process = 0;
    EXPECT_EQ(AXUIElementGetPid(element, &process), kAXErrorSuccess);
    EXPECT_EQ(process, 777);
    EXPECT_EQ(AXUIElementGetPid(application, &process), kAXErrorSuccess);
    EXPECT_EQ(process, -1);
    EXPECT_EQ(AXUIElementGetPid(element, nullptr), kAXErrorIllegalArgument);
    EXPECT_EQ(AXUIElementGetPid(nullptr, &process), kAXErrorIllegalArgument);
    EXPECT_EQ(process, -1) << "a failure writes nothing";
    EXPECT_TRUE(desktop.Exchanges().empty());
}

TEST_F(ElementTimeout, IsTheSessionsUntilSet) {
    ScriptedDesktop desktop(R"({"messagingTimeout": 0.75})");
    desktop.Restart();
    const OwnedElement element = AXUIElementCreateApplication(501);
    EXPECT_EQ(TimeoutOf(element), 0.75);
    AXUIElementPerformAction(element, kAXPressAction);
    EXPECT_EQ(desktop.Exchanges().back().timeout, 0.75);
}

TEST_F(ElementTimeout, SetOnAnElementHoldsForThatVeryObjectOnly) {
    ScriptedDesktop desktop(Succeed);
    const OwnedElement element = CreateElement({501, 3});
    const OwnedElement equal = CreateElement({501, 3});
    EXPECT_EQ(AXUIElementSetMessagingTimeout(element, 0.5F), kAXErrorSuccess);
    EXPECT_EQ(TimeoutOf(element), 0.5);
    EXPECT_EQ(TimeoutOf(equal), 6.0);
    EXPECT_EQ(AXUIElementSetMessagingTimeout(element, 0), kAXErrorSuccess);
    EXPECT_EQ(TimeoutOf(element), 6.0);
}

TEST_F(ElementTimeout, SetOnTheSystemWideElementHoldsForAllThatHaveNoneOfTheirOwn) {
    ScriptedDesktop desktop(Succeed);
    const OwnedElement system = AXUIElementCreateSystemWide();
    const OwnedElement element = CreateElement({501, 3});
    const OwnedElement own = CreateElement({501, 3});
    AXUIElementSetMessagingTimeout(own, 2);
    EXPECT_EQ(AXUIElementSetMessagingTimeout(system, 0.25F), kAXErrorSuccess);
    EXPECT_EQ(TimeoutOf(element), 0.25);
    EXPECT_EQ(TimeoutOf(own), 2.0);
    EXPECT_EQ(AXUIElementSetMessagingTimeout(system, 0), kAXErrorSuccess);
    EXPECT_EQ(TimeoutOf(element), 6.0);
}

TEST_F(ElementTimeout, BelowZeroOrNoNumberIsAnIllegalArgument) {
    ScriptedDesktop desktop(Succeed);
    const OwnedElement element = AXUIElementCreateApplication(501);
    EXPECT_EQ(AXUIElementSetMessagingTimeout(element, -1), kAXErrorIllegalArgument);
    EXPECT_EQ(AXUIElementSetMessagingTimeout(element, std::nanf("")), kAXErrorIllegalArgument);
    EXPECT_EQ(AXUIElementSetMessagingTimeout(nullptr, 1), kAXErrorIllegalArgument);
    EXPECT_EQ(TimeoutOf(element), 6.0);
}

TEST(SystemWideElement, HasNeitherAttributesNorActions) {
    ScriptedDesktop desktop(Succeed);
    const OwnedElement system = AXUIElementCreateSystemWide();
    CFTypeRef value = nullptr;
    EXPECT_EQ(AXUIElementCopyAttributeValue(system, kAXRoleAttribute, &value),
              kAXErrorAttributeUnsupported);
    EXPECT_EQ(AXUIElementPerformAction(system, kAXPressAction), kAXErrorActionUnsupported);
    EXPECT_TRUE(desktop.Exchanges().empty());
    EXPECT_EQ(value, nullptr);
}

TEST(Element, LeavesNoObjectBehind) {
    EXPECT_EQ(platform_testing::LeftOverBy([] {
                  const OwnedElement element = AXUIElementCreateApplication(501);
                  const OwnedElement system = AXUIElementCreateSystemWide();
                  const OwnedElement control = CreateElement({1, 2});
              }),
              "");
}

}  // namespace
