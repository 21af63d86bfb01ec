// Records that ask for input events.
#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include "protocol/IntegerFieldsSpec.h"

struct SSendKeystrokeSpec : SIntegerFieldsSpec<3> {
    unsigned char* Serialize() override;
    void Deserialize(const unsigned char* src) override;

    unsigned int keyCode = 0;    // low 16 bits used
    unsigned int modifiers = 0;  // modifier word, low 16 bits used
    unsigned int flag = 0;       // not 0: press
};

struct SSendMouseSpec : SIntegerFieldsSpec<4> {
    SSendMouseSpec() = default;

    // Coordinates are rounded half up, unlike the truncated ones of the geometry records; a
    // negative one is still truncated toward zero after 0.5 is added, and travels as its bit
    // pattern.
    SSendMouseSpec(CGPoint point, unsigned int buttonWord, unsigned int flagValue);
    unsigned char* Serialize() override;
    void Deserialize(const unsigned char* src) override;

    unsigned int x = 0;
    unsigned int y = 0;
    unsigned int button = 0;  // modifier word of the gesture, low 16 bits used
    unsigned int flag = 0;    // 0 or 1
};
