// Formats converted for GNUstep.
#pragma once

#include <string>
#include <string_view>

namespace core_foundation {

// The format with which GNUstep produces from the same arguments what `format` produces with Core
// Foundation: the width and precision of %@ are left out, and so is the beginning of a conversion
// that does not exist, whose last character Core Foundation writes. %p writes null as 0x0.
std::u16string FormatForGNUstep(std::u16string_view format);

}  // namespace core_foundation
