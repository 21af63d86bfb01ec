// The array behind CFArrayCreate and CFArrayCreateMutable: values with the callbacks it was created
// with, an NSArray for Foundation.
#pragma once

#import <Foundation/Foundation.h>

#include <CoreFoundation/CFArray.h>

#include <vector>

@interface CallbackArray : NSMutableArray {
    struct CallbackArrayStorage* _storage;
}
- (id)initWithValues:(const void* const*)values
               count:(NSUInteger)count
           callBacks:(const CFArrayCallBacks*)callBacks;
- (const std::vector<const void*>&)values;
@end
