#include <cstdint>
#include <limits>

#include "accessibility/VEK_C_AXUtils.h"
#include "tests/unit/accessibility/AccessibilityTest.h"

namespace {

class ElementValues : public AccessibilityTest {
  protected:
    ElementValues() { editor_.Set(element_, "AXValue", Text("before")); }

    SInt32 IntegerValueOf(const Value& value) {
        editor_.Set(element_, "AXValue", value);
        return utils_.IntegerValueForElement(object_.get(), CFSTR("a tag"));
    }

    VEK_C_AXUtils utils_;
    ElementReference element_ = editor_.Add("AXTextField", "_NS:1");
    OwnedReference<AXUIElementRef> object_ = Object(element_);
};

TEST_F(ElementValues, ANumberIsItsValue) {
    for (std::int64_t number : {0L, 1L, -1L, 2147483647L, -2147483648L}) {
        EXPECT_EQ(IntegerValueOf(Number(number)), number);
    }
    EXPECT_EQ(IntegerValueOf(Real(2.75)), 2);
    EXPECT_EQ(IntegerValueOf(Real(-2.75)), -2);
}

TEST_F(ElementValues, ANumberBeyond32BitsIsAsCoreFoundationCutsIt) {
    for (std::int64_t number : {1L << 31, 1L << 32, (1L << 32) + 5, -(1L << 40) + 3,
                                std::numeric_limits<std::int64_t>::max()}) {
        OwnedReference<CFNumberRef> same(
            CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &number));
        SInt32 cut = 0;
        CFNumberGetValue(same.get(), kCFNumberSInt32Type, &cut);
        EXPECT_EQ(IntegerValueOf(Number(number)), cut) << number;
    }
}

TEST_F(ElementValues, ATextOfDigitsIsZeroForOnlyNumbersCount) {
    EXPECT_EQ(IntegerValueOf(Text("5")), 0);
    EXPECT_EQ(IntegerValueOf(Text("a text that is much longer than sixteen bytes")), 0);
}

TEST_F(ElementValues, WhatIsNoNumberIsZero) {
    for (const Value& value : {Truth(true), Null(), PointAt(3, 4), List({Number(1)}),
                               Failing(kAXErrorNoValue), Value{element_}}) {
        EXPECT_EQ(IntegerValueOf(value), 0);
    }
}

TEST_F(ElementValues, AVeryLongTagIsIgnored) {
    editor_.Set(element_, "AXValue", Number(9));
    auto tag = String(std::string(10'000, 'x'));
    EXPECT_EQ(utils_.IntegerValueForElement(object_.get(), tag.get()), 9);
    EXPECT_EQ(utils_.IntegerValueForElement(object_.get(), nullptr), 9);
}

TEST_F(ElementValues, TextAttributesAreCopiedWhenTheyAreTexts) {
    editor_.Set(element_, "AXValue", Text("the value"));
    editor_.Set(element_, "AXDescription", Text("the description"));
    editor_.Set(element_, "AXValueDescription", Text(""));
    using Text = OwnedReference<CFStringRef>;
    EXPECT_EQ(TextOf(Text(utils_.CopyStringValueForElement(object_.get())).get()), "the value");
    EXPECT_EQ(TextOf(Text(utils_.CopyDescriptionForElement(object_.get())).get()),
              "the description");
    EXPECT_EQ(TextOf(Text(utils_.CopyValueDescriptionForElement(object_.get())).get()), "");
}

TEST_F(ElementValues, TextAttributesOfOtherTypesAreNone) {
    for (const Value& value : {Number(5), Truth(true), Null(), PointAt(3, 4), List({}),
                               Failing(kAXErrorNoValue), Value{element_}}) {
        for (const char* attribute : {"AXValue", "AXDescription", "AXValueDescription"}) {
            editor_.Set(element_, attribute, value);
        }
        EXPECT_EQ(utils_.CopyStringValueForElement(object_.get()), nullptr);
        EXPECT_EQ(utils_.CopyDescriptionForElement(object_.get()), nullptr);
        EXPECT_EQ(utils_.CopyValueDescriptionForElement(object_.get()), nullptr);
    }
}

TEST_F(ElementValues, AnAbsentElementHasNoValues) {
    EXPECT_EQ(utils_.IntegerValueForElement(nullptr, CFSTR("")), 0);
    EXPECT_EQ(utils_.CopyStringValueForElement(nullptr), nullptr);
    EXPECT_EQ(utils_.CopyDescriptionForElement(nullptr), nullptr);
    EXPECT_EQ(utils_.CopyValueDescriptionForElement(nullptr), nullptr);
    EXPECT_FALSE(utils_.SetStringValueForElement(nullptr, CFSTR("x")));
    EXPECT_FALSE(utils_.ElementIsValid(nullptr));
}

TEST_F(ElementValues, SettingATextSetsTheValueThenConfirms) {
    EXPECT_TRUE(utils_.SetStringValueForElement(object_.get(), CFSTR("12")));
    EXPECT_THAT(editor_.Changes(),
                testing::ElementsAre("set AXValue _NS:1 = 12", "AXConfirm _NS:1"));
}

TEST_F(ElementValues, AValueThatCannotBeSetIsNotConfirmed) {
    editor_.Refuse(element_, "AXValue", kAXErrorFailure);
    EXPECT_FALSE(utils_.SetStringValueForElement(object_.get(), CFSTR("12")));
    EXPECT_THAT(editor_.Changes(), testing::ElementsAre("set AXValue _NS:1 = 12 failed"));
}

TEST_F(ElementValues, AValueThatIsSetButNotConfirmedIsAFailure) {
    editor_.Refuse(element_, "AXConfirm", kAXErrorActionUnsupported);
    EXPECT_FALSE(utils_.SetStringValueForElement(object_.get(), CFSTR("12")));
    EXPECT_THAT(editor_.Changes(),
                testing::ElementsAre("set AXValue _NS:1 = 12", "AXConfirm _NS:1 failed"));
}

TEST_F(ElementValues, AnElementIsValidWhileItAnswersWhateverItAnswers) {
    EXPECT_TRUE(utils_.ElementIsValid(object_.get()))
        << "the identifier is not settable, which must not matter";
    editor_.Fail(element_, kAXErrorInvalidUIElement);
    EXPECT_FALSE(utils_.ElementIsValid(object_.get()));
}

TEST_F(ElementValues, ValidityIsOneQuestionWhetherTheIdentifierIsSettable) {
    std::vector<desktop_link::Request> requests;
    desktop_.onRequest = [&](const desktop_link::Request& request) { requests.push_back(request); };
    EXPECT_TRUE(utils_.ElementIsValid(object_.get()));
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].operation, desktop_link::Operation::isSettable);
    EXPECT_EQ(requests[0].element, element_);
    EXPECT_THAT(requests[0].names, testing::ElementsAre("AXIdentifier"));
}

// --- Siblings ----------------------------------------------------------------------------------

class Siblings : public AccessibilityTest {
  protected:
    ElementReference Sibling(const std::string& title, const std::string& role,
                             const Value& description) {
        ElementReference element = Titled(editor_.Add(role), title);
        editor_.Set(element, "AXDescription", description);
        return element;
    }
    std::string Find(CFArrayRef children) {
        OwnedReference<AXUIElementRef> found(
            utils_.CopySibling(children, CFSTR("AXValueIndicator"), CFSTR("Playhead")));
        return TitleOf(found.get());
    }

    VEK_C_AXUtils utils_;
};

TEST_F(Siblings, TheFirstWithRoleAndDescriptionIsFoundPastOtherDescriptions) {
    auto children = ArrayOf({Sibling("other role", "AXButton", Text("Playhead")),
                             Sibling("other description", "AXValueIndicator", Text("Skimmer")),
                             Sibling("description no text", "AXValueIndicator", Number(1)),
                             Sibling("wanted", "AXValueIndicator", Text("Playhead")),
                             Sibling("too late", "AXValueIndicator", Text("Playhead"))});
    EXPECT_EQ(Find(children.get()), "wanted");
}

TEST_F(Siblings, ReadsTheDescriptionOnlyOfElementsWithTheRole) {
    auto children = ArrayOf({Sibling("other role", "AXButton", Text("Playhead")),
                             Sibling("wanted", "AXValueIndicator", Text("Playhead"))});
    EXPECT_EQ(ExchangesOf([&] {
                  OwnedReference<AXUIElementRef> found(utils_.CopySibling(
                      children.get(), CFSTR("AXValueIndicator"), CFSTR("Playhead")));
              }),
              3U);
}

TEST_F(Siblings, NothingMatchesInEmptyNullAndAlienArrays) {
    EXPECT_EQ(Find(nullptr), "(none)");
    EXPECT_EQ(utils_.CopySibling(nullptr, CFSTR("AXButton")), nullptr);
    auto children = Array(List({Null(), Number(1), Text("AXValueIndicator")}));
    EXPECT_EQ(Find(children.get()), "(none)");
    EXPECT_EQ(utils_.CopySibling(children.get(), CFSTR("AXButton")), nullptr);
    EXPECT_EQ(Find(Array(List({})).get()), "(none)");
}

TEST_F(Siblings, AnElementThatFailsIsPassedOver) {
    auto broken = Sibling("broken", "AXValueIndicator", Text("Playhead"));
    auto children = ArrayOf({broken, Sibling("wanted", "AXValueIndicator", Text("Playhead"))});
    editor_.Fail(broken, kAXErrorInvalidUIElement);
    EXPECT_EQ(Find(children.get()), "wanted");
}

TEST_F(Siblings, WithADescriptionTheElementIsRetainedForTheCaller) {
    auto children = ArrayOf({Sibling("wanted", "AXValueIndicator", Text("Playhead"))});
    CFTypeRef inArray = CFArrayGetValueAtIndex(children.get(), 0);
    CFIndex before = CFGetRetainCount(inArray);
    OwnedReference<AXUIElementRef> found(
        utils_.CopySibling(children.get(), CFSTR("AXValueIndicator"), CFSTR("Playhead")));
    EXPECT_EQ(found.get(), inArray);
    EXPECT_EQ(CFGetRetainCount(inArray), before + 1);
}

TEST_F(Siblings, ByRoleAloneTheElementIsBorrowedFromTheArray) {
    auto children =
        ArrayOf({Sibling("other", "AXImage", Text("")), Sibling("wanted", "AXTextField", Number(1)),
                 Sibling("too late", "AXTextField", Number(1))});
    CFTypeRef inArray = CFArrayGetValueAtIndex(children.get(), 1);
    CFIndex before = CFGetRetainCount(inArray);
    EXPECT_EQ(utils_.CopySibling(children.get(), CFSTR("AXTextField")), inArray);
    EXPECT_EQ(CFGetRetainCount(inArray), before);
}

}  // namespace
