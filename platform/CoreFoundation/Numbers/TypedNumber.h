// The number behind CFNumberCreate. Foundation's own numbers do not record whether they were made
// from 8, 16 or 32 bits.
#pragma once

#import <Foundation/Foundation.h>

#include "platform/CoreFoundation/Numbers/NumberValue.h"

@interface TypedNumber : NSNumber {
    core_foundation::NumberValue _value;
}
- (id)initWithNumberValue:(core_foundation::NumberValue)value;
- (core_foundation::NumberValue)value;
@end
