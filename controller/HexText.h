// The digits of the hex text that the driver writes.
#pragma once

extern const char kHex2ASCII[16];  // not 0-terminated
