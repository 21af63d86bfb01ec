// Well-formed UTF-8, as the Unicode standard defines it.
#pragma once

#include <string_view>

namespace desktop_link {

// False for overlong forms, surrogates, numbers above U+10FFFF and truncated sequences.
bool IsUtf8(std::string_view text);

}  // namespace desktop_link
