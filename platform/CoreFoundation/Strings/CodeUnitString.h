// A string of arbitrary code units. GNUstep cannot represent unpaired surrogates, and takes a
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
