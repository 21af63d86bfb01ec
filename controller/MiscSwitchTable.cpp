#include "controller/MiscSwitchTable.h"

const unsigned char kMiscSwitchRespondsToMIDI[64] = {
    1, 1, 1, 1, 1, 1, 1, 1,  //  0
    0, 0, 0, 0, 0, 0, 0, 1,  //  8
    1, 1, 1, 1, 1, 0, 0, 0,  // 16
    0, 1, 1, 1, 1, 1, 0, 0,  // 24
    1, 1, 1, 1, 1, 1, 1, 1,  // 32
    0, 0, 0, 0, 0, 0, 0, 0,  // 40
    0, 0, 0, 0, 0, 0, 0, 0,  // 48
    1, 1, 1, 1, 1, 0, 0, 0,  // 56
};
