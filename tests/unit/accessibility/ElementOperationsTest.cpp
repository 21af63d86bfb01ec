#include <limits>

#include "platform/Testing/LogCapture.h"
#include "tests/unit/accessibility/DriverBesideEditor.h"

namespace {

using desktop_link::Request;

class ElementOperations : public DriverBesideEditor {
  protected:
    ElementReference Show(const std::string& role, const std::string& identifier = "_NS:1",
                          const std::vector<ElementReference>& children = {}) {
        ElementReference element = editor_.Add(role, identifier, children);
        editor_.ShowWindow({editor_.Add("AXGroup", "", {element})});
        return element;
    }
    ElementReference Radio(const Value& value) {
        ElementReference button = editor_.Add("AXRadioButton");
        editor_.Set(button, "AXValue", value);
        return button;
    }

    static constexpr CGPoint kUntouched = {-1, -2};
    CGPoint point_ = kUntouched;
    unsigned value_ = 4711;
};

// What no field could hold: every operation meets values of all these types.
const Value kAlienValues[] = {Null(),
                              Text("text"),
                              Truth(true),
                              List({}),
                              Failing(-25212),
                              Value{desktop_link::Size{1, 2}},
                              Value{ElementReference{501, 0}}};

// --- Text ----------------------------------------------------------------------------------------

TEST_F(ElementOperations, StringValueIsHandedOverAutoreleased) {
    editor_.Set(Show("AXTextField"), "AXValue", Text("00:01"));
    {
        platform_testing::AutoreleasePool pool;
        EXPECT_EQ(TextOf(driver_->GetStringValueOfElementWithID(CFSTR("_NS:1"))), "00:01");
    }
}

TEST_F(ElementOperations, StringValueOfAnotherTypeOrOfNoElementIsNull) {
    auto element = Show("AXTextField");
    EXPECT_EQ(driver_->GetStringValueOfElementWithID(CFSTR("_NS:1")), nullptr);
    editor_.Set(element, "AXValue", Number(5));
    EXPECT_EQ(driver_->GetStringValueOfElementWithID(CFSTR("_NS:1")), nullptr);
    EXPECT_EQ(driver_->GetStringValueOfElementWithID(CFSTR("_NS:2")), nullptr);
}

TEST_F(ElementOperations, StringValueIsThatOfAnyKindOfControl) {
    for (const char* role : {"AXButton", "AXCheckBox", "AXTable", "AXTextField", "AXRadioGroup"}) {
        editor_.Set(Show(role), "AXValue", Text(role));
        EXPECT_EQ(TextOf(driver_->GetStringValueOfElementWithID(CFSTR("_NS:1"))), role);
    }
    editor_.Set(Show("AXStaticText"), "AXValue", Text("no control"));
    EXPECT_EQ(driver_->GetStringValueOfElementWithID(CFSTR("_NS:1")), nullptr);
}

TEST_F(ElementOperations, SettingATextAlwaysAnswersFalseThoughItSets) {
    editor_.Set(Show("AXTextField"), "AXValue", Text("before"));
    EXPECT_FALSE(driver_->SetIntValueAsStringOfElementWithID(CFSTR("_NS:1"), 12));
    EXPECT_FALSE(driver_->SetIntValueAsStringOfElementWithID(CFSTR("_NS:1"),
                                                             std::numeric_limits<int>::min()));
    EXPECT_FALSE(driver_->SetIntValueAsStringOfElementWithID(CFSTR("_NS:2"), 12));
    EXPECT_THAT(editor_.Changes(),
                testing::ElementsAre("set AXValue _NS:1 = 12", "AXConfirm _NS:1",
                                     "set AXValue _NS:1 = -2147483648", "AXConfirm _NS:1"));
}

TEST_F(ElementOperations, SettingATextReachesTextFieldsOnly) {
    Show("AXButton");
    driver_->SetIntValueAsStringOfElementWithID(CFSTR("_NS:1"), 12);
    EXPECT_THAT(editor_.Changes(), testing::IsEmpty());
}

// --- Value ---------------------------------------------------------------------------------------

TEST_F(ElementOperations, ValueOfANumberIsReported) {
    editor_.Set(Show("AXCheckBox"), "AXValue", Number(1));
    EXPECT_TRUE(driver_->GetValueOfElementWithID(CFSTR("_NS:1"), value_));
    EXPECT_EQ(value_, 1U);
}

TEST_F(ElementOperations, ANegativeValueIsItsTwosComplement) {
    editor_.Set(Show("AXCheckBox"), "AXValue", Number(-1));
    EXPECT_TRUE(driver_->GetValueOfElementWithID(CFSTR("_NS:1"), value_));
    EXPECT_EQ(value_, 0xFFFFFFFFU);
}

TEST_F(ElementOperations, ValueOfAnElementWhoseValueIsATextIsTrueWithZero) {
    editor_.Set(Show("AXTextField"), "AXValue", Text("5"));
    EXPECT_TRUE(driver_->GetValueOfElementWithID(CFSTR("_NS:1"), value_));
    EXPECT_EQ(value_, 0U);
}

TEST_F(ElementOperations, AnUnreadableValueIsTrueWithZero) {
    auto element = Show("AXTextField");
    for (const Value& value : kAlienValues) {
        editor_.Set(element, "AXValue", value);
        value_ = 4711;
        EXPECT_TRUE(driver_->GetValueOfElementWithID(CFSTR("_NS:1"), value_));
        EXPECT_EQ(value_, 0U);
    }
}

TEST_F(ElementOperations, ValueOfNoElementIsFalseAndUntouched) {
    Show("AXStaticText");
    EXPECT_FALSE(driver_->GetValueOfElementWithID(CFSTR("_NS:1"), value_));
    EXPECT_EQ(value_, 4711U);
}

// --- Position
// --------------------------------------------------------------------------------------

TEST_F(ElementOperations, PositionIsReported17RightOfAndBelowTheCorner) {
    editor_.Set(Show("AXButton"), "AXPosition", PointAt(100.5, -40));
    EXPECT_TRUE(driver_->GetPositionOfElementWithID(CFSTR("_NS:1"), point_));
    EXPECT_EQ(point_.x, 117.5);
    EXPECT_EQ(point_.y, -23);
}

TEST_F(ElementOperations, PositionOfElement128HasNoOffsetFromProfileRow2On) {
    editor_.Set(Show("AXButton", "_NS:128"), "AXPosition", PointAt(10, 20));
    for (int row = 0; row < 6; ++row) {
        Profile() = row;
        EXPECT_TRUE(driver_->GetPositionOfElementWithID(CFSTR("_NS:128"), point_));
        EXPECT_EQ(point_.x, row < 2 ? 27 : 10) << "row " << row;
        EXPECT_EQ(point_.y, row < 2 ? 37 : 20) << "row " << row;
    }
}

TEST_F(ElementOperations, OnlyTheExactIdentifier128IsSpared) {
    editor_.Set(Show("AXButton", "_NS:1280"), "AXPosition", PointAt(10, 20));
    EXPECT_TRUE(driver_->GetPositionOfElementWithID(CFSTR("_NS:1280"), point_));
    EXPECT_EQ(point_.x, 27);
}

TEST_F(ElementOperations, APositionThatIsNoPointIsAFailure) {
    auto element = Show("AXButton");
    for (const Value& value : kAlienValues) {
        editor_.Set(element, "AXPosition", value);
        EXPECT_FALSE(driver_->GetPositionOfElementWithID(CFSTR("_NS:1"), point_));
    }
    EXPECT_FALSE(driver_->GetPositionOfElementWithID(CFSTR("_NS:2"), point_));
    EXPECT_EQ(point_.x, kUntouched.x);
    EXPECT_EQ(point_.y, kUntouched.y);
}

TEST_F(ElementOperations, PositionOfTheParentHasNoOffset) {
    auto parent = editor_.Add("AXGroup");
    editor_.Set(parent, "AXPosition", PointAt(10, 20));
    editor_.Set(Show("AXButton"), "AXParent", Value{parent});
    EXPECT_TRUE(driver_->GetParentPositionOfElementWithID(CFSTR("_NS:1"), point_));
    EXPECT_EQ(point_.x, 10);
    EXPECT_EQ(point_.y, 20);
}

TEST_F(ElementOperations, AParentThatIsNoElementOrHasNoPointIsAFailure) {
    auto element = Show("AXButton");
    EXPECT_FALSE(driver_->GetParentPositionOfElementWithID(CFSTR("_NS:1"), point_));
    for (const Value& value : {Null(), Number(1), Text("AXGroup"), List({Value{element}})}) {
        editor_.Set(element, "AXParent", value);
        EXPECT_FALSE(driver_->GetParentPositionOfElementWithID(CFSTR("_NS:1"), point_));
    }
    auto parent = editor_.Add("AXGroup");
    editor_.Set(element, "AXParent", Value{parent});
    for (const Value& value : kAlienValues) {
        editor_.Set(parent, "AXPosition", value);
        EXPECT_FALSE(driver_->GetParentPositionOfElementWithID(CFSTR("_NS:1"), point_));
    }
    EXPECT_FALSE(driver_->GetParentPositionOfElementWithID(CFSTR("_NS:2"), point_));
    EXPECT_EQ(point_.x, kUntouched.x);
}

// --- Press
// -----------------------------------------------------------------------------------------

TEST_F(ElementOperations, PressingPerformsAXPress) {
    Show("AXButton");
    EXPECT_TRUE(driver_->PressButtonWithID(CFSTR("_NS:1")));
    EXPECT_THAT(editor_.Changes(), testing::ElementsAre("AXPress _NS:1"));
}

TEST_F(ElementOperations, ARefusedPressIsAFailure) {
    editor_.Refuse(Show("AXButton"), "AXPress", kAXErrorActionUnsupported);
    EXPECT_FALSE(driver_->PressButtonWithID(CFSTR("_NS:1")));
    EXPECT_FALSE(driver_->PressButtonWithID(CFSTR("_NS:2")));
}

TEST_F(ElementOperations, AnApplicationThatHangsAtThePressIsAFailure) {
    Show("AXButton");
    desktop_.onRequest = [&](const Request& request) {
        if (request.operation == desktop_link::Operation::performAction) {
            editor_.Hang();
        }
    };
    EXPECT_FALSE(driver_->PressButtonWithID(CFSTR("_NS:1")));
}

// --- Radio groups
// ------------------------------------------------------------------------------------

TEST_F(ElementOperations, RadioGroupValueIsTheIndexOfTheFirstNonZeroChild) {
    Show("AXRadioGroup", "_NS:1",
         {Radio(Number(0)), Radio(Text("1")), Radio(Truth(true)), Radio(Number(-1)),
          Radio(Number(1))});
    EXPECT_TRUE(driver_->GetValueOfAXRadioGroupWithID(CFSTR("_NS:1"), value_));
    EXPECT_EQ(value_, 3U) << "neither a text nor a truth value counts as a number";
}

TEST_F(ElementOperations, ARadioGroupWithoutSelectedChildIsFalse) {
    Show("AXRadioGroup", "_NS:1", {Radio(Number(0)), Radio(Real(0.5)), Radio(Null())});
    EXPECT_FALSE(driver_->GetValueOfAXRadioGroupWithID(CFSTR("_NS:1"), value_));
    EXPECT_EQ(value_, 4711U);
}

TEST_F(ElementOperations, ARadioGroupWhoseChildrenCannotBeReadIsFalse) {
    auto group = Show("AXRadioGroup");
    for (const Value& children :
         {Failing(-25204), Null(), Text("x"), List({}), List({Null(), Number(1)})}) {
        editor_.Set(group, "AXChildren", children);
        EXPECT_FALSE(driver_->GetValueOfAXRadioGroupWithID(CFSTR("_NS:1"), value_));
        EXPECT_FALSE(SelectRadioButton(*driver_, CFSTR("_NS:1"), 0));
    }
}

TEST_F(ElementOperations, RadioOperationsReachRadioGroupsOnly) {
    Show("AXTable", "_NS:1", {Radio(Number(1))});
    EXPECT_FALSE(driver_->GetValueOfAXRadioGroupWithID(CFSTR("_NS:1"), value_));
    EXPECT_FALSE(SelectRadioButton(*driver_, CFSTR("_NS:1"), 0));
}

TEST_F(ElementOperations, SettingARadioGroupPressesTheChildAtTheIndex) {
    auto second = editor_.Add("AXRadioButton", "_NS:22");
    Show("AXRadioGroup", "_NS:1", {editor_.Add("AXRadioButton", "_NS:21"), second});
    EXPECT_TRUE(SelectRadioButton(*driver_, CFSTR("_NS:1"), 1));
    EXPECT_THAT(editor_.Changes(), testing::ElementsAre("AXPress _NS:22"));
    editor_.Refuse(second, "AXPress", kAXErrorFailure);
    EXPECT_FALSE(SelectRadioButton(*driver_, CFSTR("_NS:1"), 1));
}

TEST_F(ElementOperations, AnIndexEqualToOrBeyondTheChildCountIsFalse) {
    Show("AXRadioGroup", "_NS:1", {Radio(Number(0)), Radio(Number(1))});
    for (unsigned index : {2U, 3U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        EXPECT_FALSE(SelectRadioButton(*driver_, CFSTR("_NS:1"), index)) << index;
    }
    EXPECT_THAT(editor_.Changes(), testing::IsEmpty());
}

// --- All of them
// -----------------------------------------------------------------------------------

TEST_F(ElementOperations, NoneLogsAnything) {
    Show("AXRadioGroup", "_NS:1", {Radio(Number(1))});
    platform_testing::LogCapture console;
    for (CFStringRef identifier : {CFSTR("_NS:1"), CFSTR("_NS:2")}) {
        driver_->GetStringValueOfElementWithID(identifier);
        driver_->SetIntValueAsStringOfElementWithID(identifier, 1);
        driver_->GetValueOfElementWithID(identifier, value_);
        driver_->GetPositionOfElementWithID(identifier, point_);
        driver_->PressButtonWithID(identifier);
        driver_->GetValueOfAXRadioGroupWithID(identifier, value_);
        driver_->GetParentPositionOfElementWithID(identifier, point_);
    }
    EXPECT_THAT(console.Lines(), testing::IsEmpty());
}

TEST_F(ElementOperations, AnApplicationThatDiesInTheMiddleFailsEachOfThem) {
    for (int survived = 0; survived < 4; ++survived) {
        editor_.StartAnew();
        Show("AXRadioGroup", "_NS:1", {Radio(Number(1))});
        int left = survived;
        desktop_.onRequest = [&](const Request&) {
            if (left-- == 0) {
                editor_.Die();
            }
        };
        EXPECT_FALSE(driver_->GetValueOfAXRadioGroupWithID(CFSTR("_NS:1"), value_)) << survived;
        EXPECT_FALSE(driver_->PressButtonWithID(CFSTR("_NS:1")));
        EXPECT_FALSE(driver_->GetPositionOfElementWithID(CFSTR("_NS:1"), point_));
    }
}

}  // namespace
