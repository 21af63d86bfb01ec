#include "VEKCommon/Autoreleased.h"

#import <Foundation/Foundation.h>

CFTypeRef AutoreleaseObject(CFTypeRef object) {
    return (CFTypeRef)[(id)object autorelease];
}
