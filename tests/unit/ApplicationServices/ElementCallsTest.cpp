#include <ApplicationServices/ApplicationServices.h>
#include <gtest/gtest.h>

#include "platform/ApplicationServices/Element.h"
#include "platform/Testing/LiveObjects.h"
#include "platform/Variants/Variants.h"
#include "tests/support/OwnedObject.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/SessionFixture.h"

namespace {

using application_services::CreateElement;
using desktop_link::Array;
using desktop_link::ElementReference;
using desktop_link::ErrorValue;
using desktop_link::Operation;
using desktop_link::Point;
using desktop_link::Reply;
using desktop_link::Request;
using desktop_link::Value;
using test_support::ScriptedDesktop;
using OwnedElement = test_support::OwnedObject<AXUIElementRef>;
using OwnedArray = test_support::OwnedObject<CFArrayRef>;
using Owned = test_support::OwnedObject<CFTypeRef>;

constexpr ElementReference kButton{501, 12};

std::optional<Reply> Answer(std::vector<Value> values) {
    Reply reply;
    reply.values = std::move(values);
    return reply;
}

std::optional<Reply> Refuse(AXError error) {
    Reply reply;
    reply.error = error;
    return reply;
}

Value Text(const char* text) {
    return Value{std::string(text)};
}

AXError ErrorIn(CFTypeRef object) {
    AXError error = kAXErrorSuccess;
    EXPECT_TRUE(AXValueGetValue(static_cast<AXValueRef>(object), kAXValueTypeAXError, &error));
    return error;
}

AXUIElementRef NoElement() {
    return reinterpret_cast<AXUIElementRef>(CFSTR("no element"));
}

class ElementCalls : public testing::Test {
  protected:
    // Every call gets this reply.
    void Desktop(std::optional<Reply> reply) {
        desktop_.Restart();
        desktop_.replyInstead = [reply](const Request&) { return reply; };
    }
    const Request& OnlyRequest() const {
        EXPECT_EQ(desktop_.Exchanges().size(), 1u) << "one call is one exchange";
        return desktop_.Exchanges().at(0).request;
    }

    ScriptedDesktop desktop_;
    const OwnedElement button_ = CreateElement(kButton);
};

// --- one attribute ---

TEST_F(ElementCalls, CopyAttributeValueAnswersTheValueInOneExchange) {
    Desktop(Answer({Text("Play")}));
    Owned value;
    EXPECT_EQ(AXUIElementCopyAttributeValue(button_, kAXTitleAttribute, value.Out()),
              kAXErrorSuccess);
    EXPECT_TRUE(CFEqual(value.get(), CFSTR("Play")));
    EXPECT_EQ(OnlyRequest().operation, Operation::copyAttribute);
    EXPECT_EQ(OnlyRequest().element, kButton);
    EXPECT_EQ(OnlyRequest().names, std::vector<std::string>{"AXTitle"});
}

TEST_F(ElementCalls, CopyAttributeValueAnswersTheApplicationsErrorAndWritesNothing) {
    for (const AXError error : {kAXErrorAttributeUnsupported, kAXErrorNoValue,
                                kAXErrorInvalidUIElement, kAXErrorAPIDisabled}) {
        Desktop(Refuse(error));
        CFTypeRef value = nullptr;
        EXPECT_EQ(AXUIElementCopyAttributeValue(button_, kAXTitleAttribute, &value), error);
        EXPECT_EQ(value, nullptr);
    }
}

TEST_F(ElementCalls, ErrorInThePlaceOfAValueIsTheResult) {
    Desktop(Answer({Value{ErrorValue{kAXErrorNoValue}}}));
    CFTypeRef value = nullptr;
    EXPECT_EQ(AXUIElementCopyAttributeValue(button_, kAXTitleAttribute, &value), kAXErrorNoValue);
    EXPECT_EQ(value, nullptr);
}

TEST_F(ElementCalls, NullObjectIsAValueToo) {
    Desktop(Answer({Value{}}));
    Owned value;
    EXPECT_EQ(AXUIElementCopyAttributeValue(button_, kAXTitleAttribute, value.Out()),
              kAXErrorSuccess);
    EXPECT_EQ(value.get(), kCFNull);
}

TEST_F(ElementCalls, ApplicationThatDoesNotAnswerInTimeGivesCannotComplete) {
    Desktop(std::nullopt);
    CFTypeRef value = nullptr;
    CFArrayRef values = nullptr;
    Boolean settable = 7;
    const void* names[] = {kAXRoleAttribute};
    const OwnedArray attributes =
        CFArrayCreate(kCFAllocatorDefault, names, 1, &kCFTypeArrayCallBacks);
    EXPECT_EQ(AXUIElementCopyAttributeValue(button_, kAXTitleAttribute, &value),
              kAXErrorCannotComplete);
    EXPECT_EQ(AXUIElementCopyMultipleAttributeValues(button_, attributes, 0, &values),
              kAXErrorCannotComplete);
    EXPECT_EQ(AXUIElementCopyAttributeNames(button_, &values), kAXErrorCannotComplete);
    EXPECT_EQ(AXUIElementCopyActionNames(button_, &values), kAXErrorCannotComplete);
    EXPECT_EQ(AXUIElementIsAttributeSettable(button_, kAXTitleAttribute, &settable),
              kAXErrorCannotComplete);
    EXPECT_EQ(AXUIElementSetAttributeValue(button_, kAXValueAttribute, kCFBooleanTrue),
              kAXErrorCannotComplete);
    EXPECT_EQ(AXUIElementPerformAction(button_, kAXPressAction), kAXErrorCannotComplete);
    EXPECT_EQ(value, nullptr);
    EXPECT_EQ(values, nullptr);
    EXPECT_EQ(settable, 7);
}

TEST_F(ElementCalls, WithoutADesktopNobodyIsTrusted) {
    const test_support::SessionFixture session;
    desktop_link::SetTransport(nullptr);
    CFTypeRef value = nullptr;
    EXPECT_EQ(AXUIElementCopyAttributeValue(button_, kAXTitleAttribute, &value),
              kAXErrorAPIDisabled);
    EXPECT_EQ(AXUIElementPerformAction(button_, kAXPressAction), kAXErrorAPIDisabled);
    EXPECT_FALSE(AXIsProcessTrustedWithOptions(nullptr));
    EXPECT_EQ(value, nullptr);
    desktop_link::SetTransport(nullptr);
}

TEST_F(ElementCalls, ReplyWithoutTheValueItOwesIsAFailure) {
    Desktop(Answer({}));
    CFTypeRef value = nullptr;
    EXPECT_EQ(AXUIElementCopyAttributeValue(button_, kAXTitleAttribute, &value), kAXErrorFailure);
    EXPECT_EQ(value, nullptr);
}

TEST_F(ElementCalls, TextThatIsNoUtf8IsAFailure) {
    Desktop(Answer({Text("\xFF\xFE")}));
    CFTypeRef value = nullptr;
    EXPECT_EQ(AXUIElementCopyAttributeValue(button_, kAXTitleAttribute, &value), kAXErrorFailure);
    EXPECT_EQ(value, nullptr);
}

TEST_F(ElementCalls, NullOrWrongArgumentsAreIllegalAndNeverSent) {
    Desktop(Answer({Text("Play")}));
    CFTypeRef value = nullptr;
    CFArrayRef values = nullptr;
    Boolean settable = 7;
    const auto noText = reinterpret_cast<CFStringRef>(kCFBooleanTrue);
    const auto noArray = reinterpret_cast<CFArrayRef>(CFSTR("no array"));
    const void* mixed[] = {kAXRoleAttribute, kCFBooleanTrue};
    const OwnedArray notOnlyTexts =
        CFArrayCreate(kCFAllocatorDefault, mixed, 2, &kCFTypeArrayCallBacks);
    const OwnedArray texts = CFArrayCreate(kCFAllocatorDefault, mixed, 1, &kCFTypeArrayCallBacks);
    const AXError results[] = {
        AXUIElementCopyAttributeValue(nullptr, kAXTitleAttribute, &value),
        AXUIElementCopyAttributeValue(NoElement(), kAXTitleAttribute, &value),
        AXUIElementCopyAttributeValue(button_, nullptr, &value),
        AXUIElementCopyAttributeValue(button_, noText, &value),
        AXUIElementCopyAttributeValue(button_, kAXTitleAttribute, nullptr),
        AXUIElementCopyMultipleAttributeValues(nullptr, texts, 0, &values),
        AXUIElementCopyMultipleAttributeValues(NoElement(), texts, 0, &values),
        AXUIElementCopyMultipleAttributeValues(button_, nullptr, 0, &values),
        AXUIElementCopyMultipleAttributeValues(button_, noArray, 0, &values),
        AXUIElementCopyMultipleAttributeValues(button_, notOnlyTexts, 0, &values),
        AXUIElementCopyMultipleAttributeValues(button_, texts, 0, nullptr),
        AXUIElementCopyAttributeNames(nullptr, &values),
        AXUIElementCopyAttributeNames(button_, nullptr),
        AXUIElementCopyActionNames(NoElement(), &values),
        AXUIElementCopyActionNames(button_, nullptr),
        AXUIElementIsAttributeSettable(nullptr, kAXTitleAttribute, &settable),
        AXUIElementIsAttributeSettable(button_, nullptr, &settable),
        AXUIElementIsAttributeSettable(button_, kAXTitleAttribute, nullptr),
        AXUIElementSetAttributeValue(nullptr, kAXValueAttribute, kCFBooleanTrue),
        AXUIElementSetAttributeValue(button_, nullptr, kCFBooleanTrue),
        AXUIElementSetAttributeValue(button_, kAXValueAttribute, nullptr),
        AXUIElementPerformAction(nullptr, kAXPressAction),
        AXUIElementPerformAction(button_, nullptr),
        AXUIElementPerformAction(button_, noText),
    };
    for (std::size_t i = 0; i < std::size(results); ++i) {
        EXPECT_EQ(results[i], kAXErrorIllegalArgument) << "call " << i;
    }
    EXPECT_TRUE(desktop_.Exchanges().empty());
    EXPECT_EQ(value, nullptr);
    EXPECT_EQ(values, nullptr);
    EXPECT_EQ(settable, 7);
}

// --- several attributes ---

class SeveralAttributes : public ElementCalls {
  protected:
    SeveralAttributes() {
        const void* names[] = {kAXRoleAttribute, kAXChildrenAttribute, kAXIdentifierAttribute,
                               kAXSubroleAttribute};
        *attributes_.Out() = CFArrayCreate(kCFAllocatorDefault, names, 4, &kCFTypeArrayCallBacks);
    }
    CFTypeRef At(CFIndex index) { return CFArrayGetValueAtIndex(values_, index); }

    OwnedArray attributes_;
    OwnedArray values_;
};

TEST_F(SeveralAttributes, AreReadInOneExchangeAndAnsweredInOrder) {
    Desktop(Answer({Text("AXGroup"), Value{Array{Value{ElementReference{501, 13}}}}, Text("_NS:59"),
                    Text("AXUnknown")}));
    EXPECT_EQ(AXUIElementCopyMultipleAttributeValues(button_, attributes_, 0, values_.Out()),
              kAXErrorSuccess);
    ASSERT_EQ(CFArrayGetCount(values_), 4);
    EXPECT_TRUE(CFEqual(At(0), kAXGroupRole));
    const auto children = static_cast<CFArrayRef>(At(1));
    const OwnedElement child = CreateElement({501, 13});
    ASSERT_EQ(CFGetTypeID(children), CFArrayGetTypeID());
    EXPECT_TRUE(CFEqual(CFArrayGetValueAtIndex(children, 0), child.get()));
    EXPECT_TRUE(CFEqual(At(2), CFSTR("_NS:59")));
    EXPECT_TRUE(CFEqual(At(3), CFSTR("AXUnknown")));
    EXPECT_EQ(OnlyRequest().operation, Operation::copyAttributes);
    EXPECT_EQ(OnlyRequest().names,
              (std::vector<std::string>{"AXRole", "AXChildren", "AXIdentifier", "AXSubrole"}));
    EXPECT_FALSE(OnlyRequest().flag);
}

TEST_F(SeveralAttributes, OneThatCannotBeHadLeavesItsErrorAsAValueAndTheCallSucceeds) {
    Desktop(Answer({Text("AXButton"), Value{ErrorValue{kAXErrorAttributeUnsupported}}, Value{},
                    Value{ErrorValue{kAXErrorNoValue}}}));
    EXPECT_EQ(AXUIElementCopyMultipleAttributeValues(button_, attributes_, 0, values_.Out()),
              kAXErrorSuccess);
    EXPECT_EQ(CFGetTypeID(At(1)), AXValueGetTypeID());
    EXPECT_EQ(ErrorIn(At(1)), kAXErrorAttributeUnsupported);
    EXPECT_EQ(At(2), kCFNull);
    EXPECT_EQ(ErrorIn(At(3)), kAXErrorNoValue);
}

TEST_F(SeveralAttributes, StopOnErrorAnswersTheFirstError) {
    Desktop(Answer({Text("AXButton"), Value{ErrorValue{kAXErrorNoValue}},
                    Value{ErrorValue{kAXErrorAttributeUnsupported}}}));
    CFArrayRef values = nullptr;
    EXPECT_EQ(AXUIElementCopyMultipleAttributeValues(
                  button_, attributes_, kAXCopyMultipleAttributeOptionStopOnError, &values),
              kAXErrorNoValue);
    EXPECT_EQ(values, nullptr);
    EXPECT_TRUE(OnlyRequest().flag);
}

TEST_F(SeveralAttributes, ErrorOfTheCallItselfIsItsResult) {
    Desktop(Refuse(kAXErrorInvalidUIElement));
    CFArrayRef values = nullptr;
    EXPECT_EQ(AXUIElementCopyMultipleAttributeValues(button_, attributes_, 0, &values),
              kAXErrorInvalidUIElement);
    EXPECT_EQ(values, nullptr);
}

TEST_F(SeveralAttributes, FewerThanAskedForAreHandedOnAsTheyCame) {
    Desktop(Answer({Text("AXButton")}));
    EXPECT_EQ(AXUIElementCopyMultipleAttributeValues(button_, attributes_, 0, values_.Out()),
              kAXErrorSuccess);
    EXPECT_EQ(CFArrayGetCount(values_), 1);
    Desktop(Answer({}));
    EXPECT_EQ(AXUIElementCopyMultipleAttributeValues(button_, attributes_, 0, values_.Out()),
              kAXErrorSuccess);
    EXPECT_EQ(CFArrayGetCount(values_), 0);
}

TEST_F(SeveralAttributes, BadTextLeavesAFailureInItsPlace) {
    Desktop(Answer({Text("\xC3("), Value{}, Value{}, Value{}}));
    EXPECT_EQ(AXUIElementCopyMultipleAttributeValues(button_, attributes_, 0, values_.Out()),
              kAXErrorSuccess);
    EXPECT_EQ(ErrorIn(At(0)), kAXErrorFailure);
}

TEST_F(SeveralAttributes, RolesOfManyElementsShareOneString) {
    Desktop(Answer({Text("AXGroup"), Value{}, Text("_NS:59"), Value{}}));
    OwnedArray others;
    AXUIElementCopyMultipleAttributeValues(button_, attributes_, 0, values_.Out());
    AXUIElementCopyMultipleAttributeValues(button_, attributes_, 0, others.Out());
    EXPECT_EQ(At(0), CFArrayGetValueAtIndex(others, 0));
    EXPECT_NE(At(2), CFArrayGetValueAtIndex(others, 2));
}

// --- names, settable, set, act ---

TEST_F(ElementCalls, NamesAreAnsweredAsTexts) {
    Desktop(Answer({Text("AXRole"), Text("AXTitle")}));
    OwnedArray names;
    EXPECT_EQ(AXUIElementCopyAttributeNames(button_, names.Out()), kAXErrorSuccess);
    ASSERT_EQ(CFArrayGetCount(names), 2);
    EXPECT_TRUE(CFEqual(CFArrayGetValueAtIndex(names, 1), kAXTitleAttribute));
    EXPECT_EQ(AXUIElementCopyActionNames(button_, names.Out()), kAXErrorSuccess);
    EXPECT_EQ(desktop_.Exchanges().at(0).request.operation, Operation::attributeNames);
    EXPECT_EQ(desktop_.Exchanges().at(1).request.operation, Operation::actionNames);
}

TEST_F(ElementCalls, NoActionsAreAnEmptyArray) {
    Desktop(Answer({}));
    OwnedArray names;
    EXPECT_EQ(AXUIElementCopyActionNames(button_, names.Out()), kAXErrorSuccess);
    EXPECT_EQ(CFArrayGetCount(names), 0);
}

TEST_F(ElementCalls, IsAttributeSettableWritesTheFlag) {
    for (const bool flag : {true, false}) {
        Reply reply;
        reply.flag = flag;
        Desktop(reply);
        Boolean settable = 7;
        EXPECT_EQ(AXUIElementIsAttributeSettable(button_, kAXIdentifierAttribute, &settable),
                  kAXErrorSuccess);
        EXPECT_EQ(settable, flag ? 1 : 0);
        EXPECT_EQ(OnlyRequest().operation, Operation::isSettable);
    }
}

TEST_F(ElementCalls, SetAttributeValueSendsTheValue) {
    Desktop(Reply{});
    EXPECT_EQ(AXUIElementSetAttributeValue(button_, kAXMainAttribute, kCFBooleanTrue),
              kAXErrorSuccess);
    EXPECT_EQ(OnlyRequest().operation, Operation::setAttribute);
    EXPECT_EQ(OnlyRequest().names, std::vector<std::string>{"AXMain"});
    EXPECT_EQ(OnlyRequest().value, Value{true});
}

TEST_F(ElementCalls, SettingAnObjectThatCannotTravelIsAnIllegalArgument) {
    Desktop(Reply{});
    const test_support::OwnedObject<CGEventRef> event =
        CGEventCreateKeyboardEvent(nullptr, 0, true);
    EXPECT_EQ(AXUIElementSetAttributeValue(button_, kAXValueAttribute, event.get()),
              kAXErrorIllegalArgument);
    EXPECT_TRUE(desktop_.Exchanges().empty());
}

TEST_F(ElementCalls, PerformActionSendsTheActionAndAnswersItsError) {
    Desktop(Refuse(kAXErrorActionUnsupported));
    EXPECT_EQ(AXUIElementPerformAction(button_, kAXPressAction), kAXErrorActionUnsupported);
    EXPECT_EQ(OnlyRequest().operation, Operation::performAction);
    EXPECT_EQ(OnlyRequest().names, std::vector<std::string>{"AXPress"});
}

TEST_F(ElementCalls, SeveralValuesWithoutAnErrorAreAllGivenThoughItWouldStopAtOne) {
    Desktop(Answer({Text("AXButton"), Value{}}));
    const void* names[] = {kAXRoleAttribute, kAXTitleAttribute};
    const OwnedArray attributes =
        CFArrayCreate(kCFAllocatorDefault, names, 2, &kCFTypeArrayCallBacks);
    OwnedArray values;
    ASSERT_EQ(AXUIElementCopyMultipleAttributeValues(
                  button_, attributes, kAXCopyMultipleAttributeOptionStopOnError, values.Out()),
              kAXErrorSuccess);
    EXPECT_EQ(CFArrayGetCount(values), 2);
}

// --- variants ---

TEST_F(ElementCalls, WhatIsMissingAmongSeveralIsNullUnderThatVariant) {
    const platform_testing::UnderVariant null(platform_testing::Variant::missingIsNull);
    Desktop(Answer({Text("AXButton"), Value{ErrorValue{kAXErrorNoValue}}}));
    const void* names[] = {kAXRoleAttribute, kAXTitleAttribute};
    const OwnedArray attributes =
        CFArrayCreate(kCFAllocatorDefault, names, 2, &kCFTypeArrayCallBacks);
    OwnedArray values;
    ASSERT_EQ(AXUIElementCopyMultipleAttributeValues(button_, attributes, 0, values.Out()),
              kAXErrorSuccess);
    EXPECT_TRUE(CFEqual(CFArrayGetValueAtIndex(values, 0), kAXButtonRole));
    EXPECT_EQ(CFArrayGetValueAtIndex(values, 1), kCFNull);
}

TEST_F(ElementCalls, NobodyWaitsLongerThanASecondUnderThatVariant) {
    const platform_testing::UnderVariant hang(platform_testing::Variant::hangForASecond);
    Desktop(Answer({Text("text")}));
    Owned value;
    AXUIElementCopyAttributeValue(button_, kAXTitleAttribute, value.Out());
    EXPECT_EQ(desktop_.Exchanges().back().timeout, 1.0);
    AXUIElementSetMessagingTimeout(button_, 0.25F);
    Owned again;
    AXUIElementCopyAttributeValue(button_, kAXTitleAttribute, again.Out());
    EXPECT_EQ(desktop_.Exchanges().back().timeout, 0.25);
}

// --- trust ---

TEST(Trust, IsAskedAnewEachTimeAndPromptsOnlyWhenTold) {
    bool trusted = true;
    ScriptedDesktop desktop([&](const Request&) {
        Reply reply;
        reply.flag = trusted;
        return reply;
    });
    EXPECT_TRUE(AXIsProcessTrustedWithOptions(nullptr));
    trusted = false;
    EXPECT_FALSE(AXIsProcessTrustedWithOptions(nullptr));

    const void* key = kAXTrustedCheckOptionPrompt;
    for (const CFBooleanRef prompt : {kCFBooleanTrue, kCFBooleanFalse}) {
        const void* value = prompt;
        const test_support::OwnedObject<CFDictionaryRef> options =
            CFDictionaryCreate(kCFAllocatorDefault, &key, &value, 1, &kCFTypeDictionaryKeyCallBacks,
                               &kCFTypeDictionaryValueCallBacks);
        EXPECT_FALSE(AXIsProcessTrustedWithOptions(options));
    }
    ASSERT_EQ(desktop.Exchanges().size(), 4u);
    EXPECT_FALSE(desktop.Exchanges()[0].request.flag);
    EXPECT_FALSE(desktop.Exchanges()[1].request.flag);
    EXPECT_TRUE(desktop.Exchanges()[2].request.flag) << "the prompt was asked for";
    EXPECT_FALSE(desktop.Exchanges()[3].request.flag);
}

TEST(Trust, OptionsWithoutABooleanForThePromptDoNotPrompt) {
    ScriptedDesktop desktop([](const Request&) { return Reply{}; });
    const int number = 1;
    const Owned one = CFNumberCreate(kCFAllocatorDefault, kCFNumberIntType, &number);
    const std::pair<CFStringRef, CFTypeRef> entries[] = {{CFSTR("Other"), kCFBooleanTrue},
                                                         {kAXTrustedCheckOptionPrompt, one.get()}};
    for (const auto& [key, value] : entries) {
        const void* keys[] = {key};
        const void* values[] = {value};
        const test_support::OwnedObject<CFDictionaryRef> options =
            CFDictionaryCreate(kCFAllocatorDefault, keys, values, 1, &kCFTypeDictionaryKeyCallBacks,
                               &kCFTypeDictionaryValueCallBacks);
        AXIsProcessTrustedWithOptions(options);
        EXPECT_FALSE(desktop.Exchanges().back().request.flag);
    }
}

TEST(Trust, DesktopThatCannotTellTrustsNobody) {
    ScriptedDesktop desktop([](const Request&) {
        Reply reply;
        reply.error = kAXErrorFailure;
        reply.flag = true;
        return reply;
    });
    EXPECT_FALSE(AXIsProcessTrustedWithOptions(nullptr));
}

TEST(Trust, PromptKeyIsTheSystemsText) {
    EXPECT_TRUE(CFEqual(kAXTrustedCheckOptionPrompt, CFSTR("AXTrustedCheckOptionPrompt")));
}

// --- ownership ---

TEST(ElementCallsOwnership, EveryCallLeavesNoObjectBehind) {
    ScriptedDesktop desktop([](const Request& request) {
        if (request.operation == Operation::copyAttributes) {
            return Answer({Text("AXGroup"), Value{Array{Value{ElementReference{501, 13}}}},
                           Value{ErrorValue{kAXErrorNoValue}}, Text("_NS:9")});
        }
        return Answer({Value{Array{Text("one"), Value{Point{1, 2}}, Value{std::int64_t{3}}}}});
    });
    const void* names[] = {kAXRoleAttribute, kAXChildrenAttribute, kAXIdentifierAttribute,
                           kAXSubroleAttribute};
    const OwnedArray attributes =
        CFArrayCreate(kCFAllocatorDefault, names, 4, &kCFTypeArrayCallBacks);
    EXPECT_EQ(platform_testing::LeftOverBy([&] {
                  const OwnedElement element = CreateElement(kButton);
                  Owned value;
                  OwnedArray values;
                  Boolean settable = 0;
                  AXUIElementCopyAttributeValue(element, kAXTitleAttribute, value.Out());
                  AXUIElementCopyMultipleAttributeValues(element, attributes, 0, values.Out());
                  AXUIElementCopyAttributeNames(element, values.Out());
                  AXUIElementCopyActionNames(element, values.Out());
                  AXUIElementIsAttributeSettable(element, kAXTitleAttribute, &settable);
                  AXUIElementSetAttributeValue(element, kAXValueAttribute, attributes.get());
                  AXUIElementPerformAction(element, kAXPressAction);
                  AXIsProcessTrustedWithOptions(nullptr);
              }),
              "");
}

}  // namespace
