#include "platform/CoreFoundation/AutoreleasePool.h"

#import <Foundation/NSAutoreleasePool.h>

namespace core_foundation {

void* PushAutoreleasePool() {
    return [[NSAutoreleasePool alloc] init];
}

void PopAutoreleasePool(void* pool) {
    [(NSAutoreleasePool*)pool drain];
}

}  // namespace core_foundation
