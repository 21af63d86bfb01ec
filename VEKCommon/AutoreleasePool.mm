#include "VEKCommon/AutoreleasePool.h"

#import <Foundation/Foundation.h>

AutoreleasePool::AutoreleasePool() : pool_([[NSAutoreleasePool alloc] init]) {}

AutoreleasePool::~AutoreleasePool() {
    [(NSAutoreleasePool*)pool_ drain];
}
