// Recognising the editing application, and converting its texts for the companion.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>

// True when the editing application is in front, and when the front application has no bundle
// identifier.
bool FrontApplicationPassesAsEditor();

// The text in the system encoding, 0-terminated. False when it cannot be converted or does not fit
// into `size` bytes with its terminator.
bool GetSystemEncodedText(CFStringRef text, char* out, std::size_t size);
