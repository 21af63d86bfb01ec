#include "platform/CoreFoundation/Collections/CallbackDictionary.h"

#include <algorithm>
#include <bit>
#include <utility>
#include <vector>

#include "platform/CoreFoundation/Collections/CallbackMap.h"
#include "platform/CoreFoundation/Runtime/CFRuntime.h"

using core_foundation::KeyEqual;
using core_foundation::KeyHash;
using core_foundation::Map;
using core_foundation::Release;
using core_foundation::Retained;

struct CallbackDictionaryStorage {
    CFDictionaryKeyCallBacks keyCallBacks;
    CFDictionaryValueCallBacks valueCallBacks;
    unsigned long mutations = 0;
    Map map{0, KeyHash{keyCallBacks.hash}, KeyEqual{keyCallBacks.equal}};
};

// Iterates over the keys that were there when it was created.
@interface CallbackDictionaryKeyEnumerator : NSEnumerator {
    std::vector<const void*>* _keys;
    NSUInteger _next;
    NSDictionary* _dictionary;
}
- (id)initWithDictionary:(CallbackDictionary*)dictionary;
@end

@implementation CallbackDictionaryKeyEnumerator

- (id)initWithDictionary:(CallbackDictionary*)dictionary {
    self = [super init];
    _dictionary = [dictionary retain];
    _keys = new std::vector<const void*>([dictionary count]);
    [dictionary getKeys:_keys->data() values:nullptr];
    return self;
}

- (void)dealloc {
    delete _keys;
    [_dictionary release];
    [super dealloc];
}

- (id)nextObject {
    return _next < _keys->size() ? (id)(*_keys)[_next++] : nil;
}

@end

@implementation CallbackDictionary

- (id)initWithKeyCallBacks:(const CFDictionaryKeyCallBacks*)keyCallBacks
            valueCallBacks:(const CFDictionaryValueCallBacks*)valueCallBacks {
    self = [super init];
    _storage = new CallbackDictionaryStorage{
        keyCallBacks == nullptr ? CFDictionaryKeyCallBacks{} : *keyCallBacks,
        valueCallBacks == nullptr ? CFDictionaryValueCallBacks{} : *valueCallBacks};
    return self;
}

- (id)init {
    return [self initWithKeyCallBacks:&kCFTypeDictionaryKeyCallBacks
                       valueCallBacks:&kCFTypeDictionaryValueCallBacks];
}

- (id)initWithCapacity:(NSUInteger)capacity {
    (void)capacity;
    return [self init];
}

- (void)dealloc {
    [self removeAllObjects];
    delete _storage;
    [super dealloc];
}

- (BOOL)getValue:(const void**)value forKey:(const void*)key {
    const auto found = _storage->map.find(key);
    if (found == _storage->map.end()) {
        return NO;
    }
    if (value != nullptr) {
        *value = found->second;
    }
    return YES;
}

// An equal key replaces the old one, as in Core Foundation.
- (void)replace:(Map::iterator)found key:(const void*)key value:(const void*)value {
    const auto [oldKey, oldValue] = *found;
    const void* const ownKey = Retained(_storage->keyCallBacks, key);
    const void* const ownValue = Retained(_storage->valueCallBacks, value);
    auto node = _storage->map.extract(found);
    node.key() = ownKey;
    node.mapped() = ownValue;
    _storage->map.insert(std::move(node));
    Release(_storage->keyCallBacks, oldKey);
    Release(_storage->valueCallBacks, oldValue);
}

- (void)setValue:(const void*)value forPointer:(const void*)key replacing:(BOOL)replacing {
    ++_storage->mutations;
    const auto found = _storage->map.find(key);
    if (found == _storage->map.end()) {
        const void* const ownKey = Retained(_storage->keyCallBacks, key);
        _storage->map.emplace(ownKey, Retained(_storage->valueCallBacks, value));
    } else if (replacing) {
        [self replace:found key:key value:value];
    }
}

- (void)removeValueForPointer:(const void*)key {
    const auto found = _storage->map.find(key);
    if (found != _storage->map.end()) {
        ++_storage->mutations;
        const auto [oldKey, oldValue] = *found;
        _storage->map.erase(found);
        Release(_storage->keyCallBacks, oldKey);
        Release(_storage->valueCallBacks, oldValue);
    }
}

- (void)removeAllObjects {
    ++_storage->mutations;
    Map old{0, _storage->map.hash_function(), _storage->map.key_eq()};
    old.swap(_storage->map);
    for (const auto& [key, value] : old) {
        Release(_storage->keyCallBacks, key);
        Release(_storage->valueCallBacks, value);
    }
}

- (void)getKeys:(const void**)keys values:(const void**)values {
    for (const auto& [key, value] : _storage->map) {
        if (keys != nullptr) {
            *keys++ = key;
        }
        if (values != nullptr) {
            *values++ = value;
        }
    }
}

- (NSUInteger)count {
    return _storage->map.size();
}

- (id)objectForKey:(id)key {
    const void* value = nullptr;
    [self getValue:&value forKey:key];
    return (id)value;
}

- (void)setObject:(id)object forKey:(id)key {
    [self setValue:object forPointer:key replacing:YES];
}

- (void)removeObjectForKey:(id)key {
    [self removeValueForPointer:key];
}

- (NSEnumerator*)keyEnumerator {
    return [[[CallbackDictionaryKeyEnumerator alloc] initWithDictionary:self] autorelease];
}

// The position is kept in the state, which has room for an iterator.
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id*)objects
                                    count:(NSUInteger)count {
    static_assert(sizeof(Map::iterator) == sizeof state->extra[0]);
    auto next =
        state->state == 0 ? _storage->map.begin() : std::bit_cast<Map::iterator>(state->extra[0]);
    NSUInteger given = 0;
    for (; given < count && next != _storage->map.end(); ++given, ++next) {
        objects[given] = (id)next->first;
    }
    state->state = 1;
    state->extra[0] = std::bit_cast<unsigned long>(next);
    state->itemsPtr = objects;
    state->mutationsPtr = &_storage->mutations;
    return given;
}

// Dictionaries are equal when the other has every key of this one, with an equal value.
- (BOOL)isEqual:(id)other {
    if (other == self) {
        return YES;
    }
    if (![other isKindOfClass:[NSDictionary class]] || [other count] != _storage->map.size()) {
        return NO;
    }
    const KeyEqual valuesEqual{_storage->valueCallBacks.equal};
    return std::all_of(_storage->map.begin(), _storage->map.end(), [&](const auto& entry) {
        const void* value = nullptr;
        return CFDictionaryGetValueIfPresent((CFDictionaryRef)other, entry.first, &value) &&
               valuesEqual(entry.second, value);
    });
}

- (BOOL)isEqualToDictionary:(NSDictionary*)other {
    return [self isEqual:other];
}

- (NSUInteger)hash {
    return _storage->map.size();
}

// Keys and values that are not objects cannot describe themselves.
- (NSString*)descriptionWithLocale:(id)locale indent:(NSUInteger)level {
    if (_storage->keyCallBacks.copyDescription == CFCopyDescription &&
        _storage->valueCallBacks.copyDescription == CFCopyDescription) {
        return [super descriptionWithLocale:locale indent:level];
    }
    NSMutableString* text = [NSMutableString stringWithString:@"{"];
    for (const auto& [key, value] : _storage->map) {
        [text appendFormat:@" %p = %p;", key, value];
    }
    [text appendString:@" }"];
    return text;
}

- (id)copyWithZone:(NSZone*)zone {
    CallbackDictionary* copy =
        [[[self class] allocWithZone:zone] initWithKeyCallBacks:&_storage->keyCallBacks
                                                 valueCallBacks:&_storage->valueCallBacks];
    for (const auto& [key, value] : _storage->map) {
        [copy setValue:value forPointer:key replacing:YES];
    }
    return copy;
}

- (id)mutableCopyWithZone:(NSZone*)zone {
    return [self copyWithZone:zone];
}

@end
