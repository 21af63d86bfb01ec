// The XML form of a property list.
#pragma once

#include <string_view>

#include "platform/CoreFoundation/PropertyList/ObjectMaker.h"

namespace property_list {

// The first element of the document, with or without a <plist> around it; what follows it is not
// looked at. Empty when there is no well-formed one.
Object ReadXml(std::u16string_view text, const ObjectMaker& make);

}  // namespace property_list
