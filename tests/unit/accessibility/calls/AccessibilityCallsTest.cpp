// The failure that an accessibility call returns instead of a value.

#include "accessibility/calls/AccessibilityCalls.h"
#include "tests/support/FrameworkAnswers.h"
#include "tests/unit/accessibility/AccessibilityTest.h"

namespace {

class AccessibilityCalls : public AccessibilityTest {
  protected:
    CallFailureKind KindOfReading() {
        CallResult<OwnedReference<CFTypeRef>> result =
            ReadAttribute(object_.get(), kAXRoleAttribute);
        EXPECT_FALSE(result);
        return result.Failure().kind;
    }

    ElementReference element_ = editor_.AddTree({{"AXRole", "AXButton"},
                                                 {"AXIdentifier", "_NS:1"},
                                                 {"AXValue", false},
                                                 {"settable", nlohmann::json::array({"AXValue"})}});
    OwnedReference<AXUIElementRef> object_ = Object(element_);
};

TEST_F(AccessibilityCalls, EachErrorHasAName) {
    EXPECT_EQ(FailureOf(kAXErrorCannotComplete).kind, CallFailureKind::timedOut);
    EXPECT_EQ(FailureOf(kAXErrorInvalidUIElement).kind, CallFailureKind::elementGone);
    for (AXError error :
         {kAXErrorAttributeUnsupported, kAXErrorActionUnsupported, kAXErrorNoValue}) {
        EXPECT_EQ(FailureOf(error).kind, CallFailureKind::notThere) << error;
    }
    for (AXError error : {kAXErrorFailure, kAXErrorIllegalArgument, kAXErrorAPIDisabled,
                          kAXErrorNotImplemented, static_cast<AXError>(-1)}) {
        EXPECT_EQ(FailureOf(error).kind, CallFailureKind::refused) << error;
        EXPECT_EQ(FailureOf(error).error, error);
    }
}

TEST_F(AccessibilityCalls, ReadingNamesItsFailure) {
    editor_.Fail(element_, kAXErrorCannotComplete);
    EXPECT_EQ(KindOfReading(), CallFailureKind::timedOut);
    editor_.Fail(element_, kAXErrorInvalidUIElement);
    EXPECT_EQ(KindOfReading(), CallFailureKind::elementGone);
    editor_.Fail(element_, kAXErrorNoValue);
    EXPECT_EQ(KindOfReading(), CallFailureKind::notThere);
    editor_.Fail(element_, kAXErrorAPIDisabled);
    EXPECT_EQ(KindOfReading(), CallFailureKind::refused);
}

TEST_F(AccessibilityCalls, SuccessWithoutAValueIsAValueThatIsNotThere) {
    FrameworkAnswers::Current().attributeValues = false;
    EXPECT_EQ(KindOfReading(), CallFailureKind::notThere);
    FrameworkAnswers::Current().attributeValues = true;
}

TEST_F(AccessibilityCalls, ReadingSeveralAttributesNamesItsFailure) {
    const void* names[] = {kAXRoleAttribute, kAXValueAttribute};
    const OwnedReference<CFArrayRef> list(
        CFArrayCreate(kCFAllocatorDefault, names, std::size(names), &kCFTypeArrayCallBacks));
    EXPECT_TRUE(ReadAttributes(object_.get(), list.get()));
    editor_.Fail(element_, kAXErrorCannotComplete);
    auto result = ReadAttributes(object_.get(), list.get());
    ASSERT_FALSE(result);
    EXPECT_EQ(result.Failure().kind, CallFailureKind::timedOut);
}

TEST_F(AccessibilityCalls, WindowsThatAreNoListAreOfTheWrongType) {
    editor_.Set(editor_.Application(), "AXWindows", Number(3));
    auto result = ReadWindows(Object(editor_.Application()).get());
    ASSERT_FALSE(result);
    EXPECT_EQ(result.Failure().kind, CallFailureKind::wrongType);
    EXPECT_EQ(result.Failure().error, kAXErrorSuccess);
    EXPECT_FALSE(std::move(result).ValueOrEmpty());
}

TEST_F(AccessibilityCalls, ActionsAndSettingsNameTheirFailure) {
    EXPECT_TRUE(PerformAction(object_.get(), kAXPressAction));
    EXPECT_TRUE(SetAttribute(object_.get(), kAXValueAttribute, kCFBooleanTrue));
    editor_.Refuse(element_, "AXPress", kAXErrorActionUnsupported);
    editor_.Refuse(element_, "AXValue", kAXErrorFailure);
    EXPECT_EQ(PerformAction(object_.get(), kAXPressAction).Failure().kind,
              CallFailureKind::notThere);
    EXPECT_EQ(SetAttribute(object_.get(), kAXValueAttribute, kCFBooleanTrue).Failure().kind,
              CallFailureKind::refused);
}

TEST_F(AccessibilityCalls, NullElementIsGoneWithoutAnExchange) {
    const unsigned long exchanges = ExchangesOf([] {
        EXPECT_EQ(ReadAttribute(nullptr, kAXRoleAttribute).Failure().kind,
                  CallFailureKind::elementGone);
        EXPECT_EQ(ReadWindows(nullptr).Failure().kind, CallFailureKind::elementGone);
        EXPECT_EQ(PerformAction(nullptr, kAXPressAction).Failure().kind,
                  CallFailureKind::elementGone);
        EXPECT_EQ(IsAttributeSettable(nullptr, kAXRoleAttribute).Failure().kind,
                  CallFailureKind::elementGone);
    });
    EXPECT_EQ(exchanges, 0u);
}

}  // namespace
