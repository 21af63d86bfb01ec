// A reference within a keyed archive: the one kind of object that only property lists have.
#pragma once

#import <Foundation/Foundation.h>

#include <cstdint>

@interface CFKeyedArchiverUID : NSObject {
    std::uint32_t _value;
}
- (instancetype)initWithValue:(std::uint32_t)value;
- (std::uint32_t)value;
@end
