// Conversion between the values of the desktop link and Core Foundation objects.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <optional>
#include <span>
#include <string>

#include "platform/DesktopLink/Value.h"

namespace application_services {

// The caller releases it. Null for text that is not UTF-8 and for excessive nesting; inside an
// array an AXValue of kAXErrorFailure stands for such a value, and a dictionary leaves it out.
CFTypeRef CreateObject(const desktop_link::Value& value);

CFArrayRef CreateArray(std::span<const desktop_link::Value> values);

// Nothing for objects that cannot be sent to an application, and for excessive nesting.
std::optional<desktop_link::Value> ValueOf(CFTypeRef object);

// UTF-8. Nothing for null, for objects of other types and for unpaired surrogates.
std::optional<std::string> TextOf(CFTypeRef object);

}  // namespace application_services
