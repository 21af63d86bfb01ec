// The text of a signpost's format and arguments.
#pragma once

#include <cstdarg>
#include <string>

namespace unified_logging {

// The first 1,024 bytes at most. Conversions are those of printf, with annotations in braces after
// the '%'. A text is "<private>" unless one of its annotations is "public".
std::string MessageText(const char* format, va_list arguments);

}  // namespace unified_logging
