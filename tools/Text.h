// Texts between the command line (UTF-8), Core Foundation and the terminal.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <optional>
#include <string>
#include <string_view>

#include "VEKCommon/OwnedReference.h"

namespace krt9ctl {

bool IsUtf8(std::string_view text);

// Null when the text is not UTF-8.
OwnedReference<CFStringRef> StringOf(std::string_view utf8);

// The text, safe to print on a terminal: control characters and bytes that are not UTF-8 as \xNN.
std::string Printable(std::string_view text);

// The text of an object as UTF-8. Nothing if the object is not a string, and for text that has no
// UTF-8 form (unpaired surrogates).
std::optional<std::string> Utf8Of(CFTypeRef object);

}  // namespace krt9ctl
