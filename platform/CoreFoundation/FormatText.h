// Formats as GNUstep is to read them.
#pragma once

#include <string>
#include <string_view>

namespace core_foundation {

// The format that makes of the same arguments with GNUstep what `format` makes with Core
// Foundation: the width and precision of %@ are left out, and so is the beginning of a conversion
// that does not exist, of which Core Foundation writes the last character. %p writes null as 0x0.
std::u16string FormatForGNUstep(std::u16string_view format);

}  // namespace core_foundation
