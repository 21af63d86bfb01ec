// A string of any code units at all. GNUstep makes no string of unpaired surrogates, and takes a
// leading U+FEFF for a byte-order mark; to Core Foundation both are text.
#pragma once

#import <Foundation/Foundation.h>

#include <string_view>

@interface CodeUnitString : NSString {
    char16_t* _units;
    NSUInteger _length;
}
- (id)initWithUnits:(std::u16string_view)units;
@end
