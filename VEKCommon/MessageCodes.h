// The four-character codes of the messages between the driver and the companion, as message
// identifiers: first character most significant. Case matters.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

// The value of a literal like 'abcd' is up to the compiler, which warns of it; this one is fixed.
constexpr SInt32 FourCharacterCode(const char (&characters)[5]) {
    SInt32 code = 0;
    for (int i = 0; i < 4; ++i) {
        code = code << 8 | static_cast<unsigned char>(characters[i]);
    }
    return code;
}

// Requests, which the companion sends to the driver's port: kJElV is 'JElV', and so on.
#define REQUEST(code, ...) constexpr SInt32 k##code = FourCharacterCode(#code);
#include "VEKCommon/Requests.def"
#undef REQUEST

// Messages that the driver sends to the companion's port.
constexpr SInt32 kStus = FourCharacterCode("Stus");  // asks for the controller's status
constexpr SInt32 kJSLg = FourCharacterCode("JSLg");  // language tag
constexpr SInt32 kJFSC = FourCharacterCode("JFSC");  // name of the selected clip
constexpr SInt32 kJFTC = FourCharacterCode("JFTC");  // timeline timecode
