#include "platform/CoreFoundation/Collections/CallbackArray.h"

#include <utility>

#include "platform/CoreFoundation/Runtime/CFRuntime.h"

struct CallbackArrayStorage {
    CFArrayCallBacks callBacks;
    std::vector<const void*> values;
    unsigned long mutations = 0;

    const void* Retain(const void* value) const {
        return callBacks.retain == nullptr ? value : callBacks.retain(kCFAllocatorDefault, value);
    }
    void Release(const void* value) const {
        if (callBacks.release != nullptr) {
            callBacks.release(kCFAllocatorDefault, value);
        }
    }
    bool Equal(const void* first, const void* second) const {
        return first == second || (callBacks.equal != nullptr && callBacks.equal(first, second));
    }
};

@implementation CallbackArray

- (id)initWithValues:(const void* const*)values
               count:(NSUInteger)count
           callBacks:(const CFArrayCallBacks*)callBacks {
    self = [super init];
    _storage = new CallbackArrayStorage{callBacks == nullptr ? CFArrayCallBacks{} : *callBacks, {}};
    _storage->values.reserve(count);
    for (NSUInteger index = 0; index < count; ++index) {
        _storage->values.push_back(_storage->Retain(values[index]));
    }
    return self;
}

- (id)init {
    return [self initWithValues:nullptr count:0 callBacks:&kCFTypeArrayCallBacks];
}

- (id)initWithCapacity:(NSUInteger)capacity {
    (void)capacity;
    return [self init];
}

- (id)initWithObjects:(const id[])objects count:(NSUInteger)count {
    return [self initWithValues:reinterpret_cast<const void* const*>(objects)
                          count:count
                      callBacks:&kCFTypeArrayCallBacks];
}

- (void)dealloc {
    [self removeAllObjects];
    delete _storage;
    [super dealloc];
}

- (const std::vector<const void*>&)values {
    return _storage->values;
}

- (NSUInteger)count {
    return _storage->values.size();
}

- (id)objectAtIndex:(NSUInteger)index {
    if (index >= _storage->values.size()) {
        [NSException raise:NSRangeException format:@"index %lu outside the array", index];
    }
    return (id)_storage->values[index];
}

- (void)insertObject:(id)object atIndex:(NSUInteger)index {
    ++_storage->mutations;
    if (index > _storage->values.size()) {
        [NSException raise:NSRangeException format:@"index %lu outside the array", index];
    }
    _storage->values.insert(_storage->values.begin() + static_cast<std::ptrdiff_t>(index),
                            _storage->Retain(object));
}

- (void)addObject:(id)object {
    ++_storage->mutations;
    _storage->values.push_back(_storage->Retain(object));
}

- (void)replaceObjectAtIndex:(NSUInteger)index withObject:(id)object {
    ++_storage->mutations;
    const void* const old = [self objectAtIndex:index];
    _storage->values[index] = _storage->Retain(object);
    _storage->Release(old);
}

- (void)removeObjectAtIndex:(NSUInteger)index {
    ++_storage->mutations;
    const void* const old = [self objectAtIndex:index];
    _storage->values.erase(_storage->values.begin() + static_cast<std::ptrdiff_t>(index));
    _storage->Release(old);
}

- (void)removeLastObject {
    [self removeObjectAtIndex:_storage->values.size() - 1];
}

- (void)removeAllObjects {
    ++_storage->mutations;
    const std::vector<const void*> old = std::exchange(_storage->values, {});
    for (const void* const value : old) {
        _storage->Release(value);
    }
}

- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id*)objects
                                    count:(NSUInteger)count {
    (void)objects;
    (void)count;
    if (state->state != 0) {
        return 0;
    }
    state->state = 1;
    state->itemsPtr = reinterpret_cast<id*>(const_cast<void**>(_storage->values.data()));
    state->mutationsPtr = &_storage->mutations;
    return _storage->values.size();
}

// Arrays are equal when their values are, one by one, and both compare values in the same way.
- (BOOL)isEqual:(id)other {
    if (other == self) {
        return YES;
    }
    const NSUInteger count = _storage->values.size();
    if (![other isKindOfClass:[NSArray class]] || [other count] != count) {
        return NO;
    }
    const CFArrayEqualCallBack othersEqual =
        [other isKindOfClass:[CallbackArray class]]
            ? ((CallbackArray*)other)->_storage->callBacks.equal
            : CFEqual;
    if (_storage->callBacks.equal != othersEqual) {
        return NO;
    }
    for (NSUInteger index = 0; index < count; ++index) {
        if (!_storage->Equal(_storage->values[index], [other objectAtIndex:index])) {
            return NO;
        }
    }
    return YES;
}

- (BOOL)isEqualToArray:(NSArray*)other {
    return [self isEqual:other];
}

- (NSUInteger)hash {
    return _storage->values.size();
}

// Values that are not objects cannot describe themselves.
- (NSString*)descriptionWithLocale:(id)locale indent:(NSUInteger)level {
    if (_storage->callBacks.copyDescription == CFCopyDescription) {
        return [super descriptionWithLocale:locale indent:level];
    }
    NSMutableString* text = [NSMutableString stringWithString:@"("];
    for (const void* const value : _storage->values) {
        [text appendFormat:@" %p", value];
    }
    [text appendString:@" )"];
    return text;
}

- (id)copyWithZone:(NSZone*)zone {
    return [[[self class] allocWithZone:zone] initWithValues:_storage->values.data()
                                                       count:_storage->values.size()
                                                   callBacks:&_storage->callBacks];
}

- (id)mutableCopyWithZone:(NSZone*)zone {
    return [self copyWithZone:zone];
}

@end
