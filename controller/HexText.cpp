#include "controller/HexText.h"

#include <cstdio>

#include "driver/CVEK_UserSpaceDriver.h"

// Nothing in the program calls these helpers: they are kept as part of the driver's interface.

const char kHex2ASCII[16] = {'0', '1', '2', '3', '4', '5', '6', '7',
                             '8', '9', 'A', 'B', 'C', 'D', 'E', 'F'};

void CVEK_UserSpaceDriver::HexByteToCString(unsigned char byte, char* out) {
    out[0] = kHex2ASCII[byte >> 4];
    out[1] = kHex2ASCII[byte & 0x0F];
    out[2] = 0;
}

void CVEK_UserSpaceDriver::HexDataToCString(const unsigned char* data, unsigned length, char* out) {
    *out = 0;
    for (unsigned i = 0; i < length; ++i) {
        if (i > 0) {
            *out++ = ' ';
        }
        HexByteToCString(data[i], out);
        out += 2;
    }
}

void CVEK_UserSpaceDriver::PrtHex(const unsigned char* data, unsigned length, bool newline) {
    for (unsigned i = 0; i < length; ++i) {
        std::printf("%.2x ", data[i]);
    }
    if (newline) {
        std::printf("\n");
    }
}
