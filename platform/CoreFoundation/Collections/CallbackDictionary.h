// The dictionary behind CFDictionaryCreate and CFDictionaryCreateMutable: keys and values with the
// callbacks it was created with, an NSDictionary for Foundation.
#pragma once

#import <Foundation/Foundation.h>

#include <CoreFoundation/CFDictionary.h>

@interface CallbackDictionary : NSMutableDictionary {
    struct CallbackDictionaryStorage* _storage;
}
- (id)initWithKeyCallBacks:(const CFDictionaryKeyCallBacks*)keyCallBacks
            valueCallBacks:(const CFDictionaryValueCallBacks*)valueCallBacks;
// Null callbacks do not tell an absent key from one that holds null; this does.
- (BOOL)getValue:(const void**)value forKey:(const void*)key;
- (void)setValue:(const void*)value forPointer:(const void*)key replacing:(BOOL)replacing;
- (void)removeValueForPointer:(const void*)key;
- (void)getKeys:(const void**)keys values:(const void**)values;
@end
