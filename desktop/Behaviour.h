// How elements react, as the controls of an editing application do.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/Model.h"

namespace desktop {

// The actions that the scene gives, else those of the role. A disabled element has none.
std::vector<std::string> ActionNames(const Element& element);

// The effect of an action that the element supports: a press flips a check box and selects a radio
// button among its siblings; a confirmation keeps the text of a field, a cancellation reverts
// it; increment and decrement step a value between its limits; raising moves a window to the
// front.
void Perform(Model& model, Application& application, Element& element, std::string_view action);

// Those the scene gives, else those of the role.
bool IsSettable(const Application& application, const Element& element, std::string_view attribute);

// The result of setting: kAttributeUnsupported when it cannot be set, kIllegalArgument when the
// value is of another type than the one it replaces, else kSuccess.
std::int32_t CheckSetting(Model& model, const Application& application, const Element& element,
                          std::string_view attribute, const Value& value);

// The effect of a setting that passed the check.
void Set(Model& model, Application& application, Element& element, std::string_view attribute,
         const Value& value);

// "1", 1, 1.0, true: the number in a value; 0 when there is none.
double NumberIn(const Value& value);

}  // namespace desktop
