// Results of the frameworks that a test decides: functions of this program replace
// theirs and pass all other calls on.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <optional>

struct FrameworkAnswers {
    bool applicationElements = true;  // false: AXUIElementCreateApplication fails
    bool attributeValues = true;  // false: AXUIElementCopyAttributeValue succeeds without a value
    std::optional<CFStringEncoding> systemEncoding;  // none: the framework's own

    static FrameworkAnswers& Current();
};
