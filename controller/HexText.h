// The digits of the hex helpers of CVEK_UserSpaceDriver.
#pragma once

extern const char kHex2ASCII[16];  // not 0-terminated
