// The classic modifier word and what each of its bits is in today's event system. Caps Lock
// (0x0400) is not in the table: it is never pressed and never a flag.
#pragma once

#include <ApplicationServices/ApplicationServices.h>

struct Modifier {
    unsigned short bit;  // in the modifier word
    CGKeyCode keyCode;   // virtual key code
    CGEventFlags flag;
};

// In the order in which the keys are pressed and released.
inline constexpr Modifier kModifiers[] = {
    {0x0100, 55, kCGEventFlagMaskCommand},
    {0x0200, 56, kCGEventFlagMaskShift},
    {0x0800, 58, kCGEventFlagMaskAlternate},
    {0x1000, 59, kCGEventFlagMaskControl},
};
