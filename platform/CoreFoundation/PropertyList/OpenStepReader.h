// The OpenStep form of a property list, and strings files.
#pragma once

#include <string_view>

#include "platform/CoreFoundation/PropertyList/ObjectMaker.h"

namespace property_list {

// A value, or the entries of a dictionary without the braces around them (a strings file), of which
// anything after the last entry is ignored. Nothing but white space and comments is an empty
// dictionary. Empty when malformed.
Object ReadOpenStep(std::u16string_view text, const ObjectMaker& make);

}  // namespace property_list
