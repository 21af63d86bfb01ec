// The language tag in the strings of the driver's bundle, decided by the test:
// CFBundleCopyLocalizedString of this program replaces the framework's. Every tick asks
// for it until there is one, so that asking is also how a test sees ticks.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

struct LanguageTag {
    std::optional<std::string> text = "en";  // none: there is no such string
    std::vector<CFAbsoluteTime> asked;       // when, in order

    std::function<void()> whenAsked;  // in the middle of a tick

    static LanguageTag& Current();
};
