#include <algorithm>
#include <array>
#include <utility>

#include "desktop/Behaviour.h"

namespace desktop {

namespace {

bool IsOneOf(std::string_view role, std::initializer_list<std::string_view> roles) {
    return std::find(roles.begin(), roles.end(), role) != roles.end();
}

bool IsPressable(std::string_view role) {
    return IsOneOf(
        role, {"AXButton", "AXCheckBox", "AXRadioButton", "AXPopUpButton", "AXMenuButton",
               "AXMenuItem", "AXMenuBarItem", "AXDisclosureTriangle", "AXColorWell", "AXLink"});
}

bool IsTextual(std::string_view role) {
    return IsOneOf(role, {"AXTextField", "AXTextArea", "AXComboBox"});
}

bool IsDisabled(const Element& element) {
    const Answer* enabled = element.Stored("AXEnabled");
    return enabled != nullptr && enabled->HasValue() && NumberIn(enabled->value) == 0;
}

// The number as a value of the old value's type; an integer for any other type.
Value WithNumber(const Value& old, double number) {
    if (std::holds_alternative<bool>(old.content)) {
        return {number != 0};
    }
    if (std::holds_alternative<double>(old.content)) {
        return {number};
    }
    constexpr double kLargest = 9007199254740992;  // 2^53
    return {static_cast<std::int64_t>(std::clamp(number, -kLargest, kLargest))};
}

void SetNumber(Model& model, Element& element, double number) {
    const Answer* value = element.Stored("AXValue");
    const Value old = value == nullptr ? Value{std::int64_t{0}} : value->value;
    model.arena.Set(element, "AXValue", Answer::Of(WithNumber(old, number)));
}

double StoredNumber(const Element& element, std::string_view name, double otherwise) {
    const Answer* stored = element.Stored(name);
    return stored == nullptr || !stored->HasValue() ? otherwise : NumberIn(stored->value);
}

void SelectRadioButton(Model& model, Element& chosen) {
    for (Element* sibling : chosen.parent->children) {
        if (sibling->Role() == "AXRadioButton") {
            SetNumber(model, *sibling, sibling == &chosen ? 1 : 0);
        }
    }
}

void Press(Model& model, Element& element) {
    ++element.Details().presses;
    const std::string_view role = element.Role();
    if (role == "AXCheckBox" || role == "AXDisclosureTriangle") {
        SetNumber(model, element, StoredNumber(element, "AXValue", 0) == 0 ? 1 : 0);
    } else if (role == "AXRadioButton" && element.parent != nullptr) {
        SelectRadioButton(model, element);
    }
}

void Step(Model& model, Element& element, double direction) {
    const double step = StoredNumber(element, "AXValueIncrement", 1);
    const double value = StoredNumber(element, "AXValue", 0) + direction * step;
    const double least = StoredNumber(element, "AXMinValue", value);
    const double most = StoredNumber(element, "AXMaxValue", value);
    SetNumber(model, element, std::max(least, std::min(most, value)));
}

void CancelText(Model& model, Element& element) {
    if (auto& before = element.Details().unconfirmedFrom) {
        model.arena.Set(element, "AXValue", Answer::Of(*std::exchange(before, std::nullopt)));
    }
}

void Raise(Application& application, Element& window) {
    if (window.parent == &application.root) {
        Detach(window);
        ElementArena::Insert(application.root, 0, window);
    }
}

}  // namespace

double NumberIn(const Value& value) {
    if (const auto* flag = std::get_if<bool>(&value.content)) {
        return *flag ? 1 : 0;
    }
    if (const auto* number = std::get_if<std::int64_t>(&value.content)) {
        return static_cast<double>(*number);
    }
    if (const auto* number = std::get_if<double>(&value.content)) {
        return *number;
    }
    return 0;
}

std::vector<std::string> ActionNames(const Element& element) {
    if (IsDisabled(element)) {
        return {};
    }
    if (element.details != nullptr && element.details->actions) {
        return *element.details->actions;
    }
    const std::string_view role = element.Role();
    if (IsPressable(role)) {
        return {"AXPress"};
    }
    if (IsTextual(role)) {
        return {"AXConfirm", "AXCancel"};
    }
    if (IsOneOf(role, {"AXSlider", "AXIncrementor", "AXStepper", "AXValueIndicator"})) {
        return {"AXIncrement", "AXDecrement"};
    }
    if (role == "AXWindow") {
        return {"AXRaise"};
    }
    return {};
}

void Perform(Model& model, Application& application, Element& element, std::string_view action) {
    if (action == "AXPress") {
        Press(model, element);
    } else if (action == "AXConfirm") {
        element.Details().unconfirmedFrom.reset();
    } else if (action == "AXCancel") {
        CancelText(model, element);
    } else if (action == "AXIncrement") {
        Step(model, element, 1);
    } else if (action == "AXDecrement") {
        Step(model, element, -1);
    } else if (action == "AXRaise") {
        Raise(application, element);
    }
}

}  // namespace desktop
