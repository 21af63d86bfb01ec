// Objects that are handed out without a reference of the receiver's own.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "VEKCommon/OwnedReference.h"

// Gives the reference to the current autorelease pool, which keeps the object until it is drained.
// Null is legal. For objects of any Core Foundation type.
CFTypeRef AutoreleaseObject(CFTypeRef object);

template <typename Reference>
Reference Autoreleased(OwnedReference<Reference> object) {
    return static_cast<Reference>(AutoreleaseObject(object.release()));
}
