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

// Requests, which the companion sends to the driver's port.
constexpr SInt32 kJAcF = FourCharacterCode("JAcF");  // refresh the front application, observe
constexpr SInt32 kJBtP = FourCharacterCode("JBtP");  // press a button
constexpr SInt32 kJCPK = FourCharacterCode("JCPK");  // post a keystroke
constexpr SInt32 kJEPp = FourCharacterCode("JEPp");  // position of an element's parent
constexpr SInt32 kJESI = FourCharacterCode("JESI");  // an element's text as a number
constexpr SInt32 kJElP = FourCharacterCode("JElP");  // position of an element
constexpr SInt32 kJElV = FourCharacterCode("JElV");  // value of an element
constexpr SInt32 kJGRV = FourCharacterCode("JGRV");  // selected button of a radio group
constexpr SInt32 kJGlM = FourCharacterCode("JGlM");  // pointer position
constexpr SInt32 kJObE = FourCharacterCode("JObE");  // observe the clip selection
constexpr SInt32 kJObT = FourCharacterCode("JObT");  // observe the timeline timecode
constexpr SInt32 kJPMC = FourCharacterCode("JPMC");  // continue a mouse gesture
constexpr SInt32 kJPME = FourCharacterCode("JPME");  // end a mouse gesture
constexpr SInt32 kJPMS = FourCharacterCode("JPMS");  // start a mouse gesture
constexpr SInt32 kJPth = FourCharacterCode("JPth");  // accepted, does nothing
constexpr SInt32 kJSIS = FourCharacterCode("JSIS");  // set an element's text to a number
constexpr SInt32 kJSRV = FourCharacterCode("JSRV");  // select a button of a radio group
constexpr SInt32 kJStO = FourCharacterCode("JStO");  // stop observing
constexpr SInt32 kJTWP = FourCharacterCode("JTWP");  // frame of the first open window of a list
constexpr SInt32 kJWiP = FourCharacterCode("JWiP");  // frame of a window
constexpr SInt32 kJXRs = FourCharacterCode("JXRs");  // forget cached elements and the clip name

// Messages that the driver sends to the companion's port.
constexpr SInt32 kStus = FourCharacterCode("Stus");  // asks for the controller's status
constexpr SInt32 kJSLg = FourCharacterCode("JSLg");  // language tag
constexpr SInt32 kJFSC = FourCharacterCode("JFSC");  // name of the selected clip
constexpr SInt32 kJFTC = FourCharacterCode("JFTC");  // timeline timecode
