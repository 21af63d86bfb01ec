// One immortal string for each of the few names that recur in a tree: roles, subroles, attributes,
// actions. A search over many elements then makes no string per element for them.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <string>

namespace application_services {

// Borrowed. Null for text that does not look like such a name; also for new names once there are
// more than an accessibility vocabulary has, so that no application can exhaust memory.
CFStringRef InternedText(const std::string& text);

}  // namespace application_services
