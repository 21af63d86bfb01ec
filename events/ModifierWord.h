// The classic modifier word, with the key and the event flag of each bit. Caps Lock (0x0400) is
// left out: it is neither pressed nor set as a flag.
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
