#include <ApplicationServices/AXValue.h>

#import <Foundation/Foundation.h>

#include <cstring>

#include "platform/CoreFoundation/Runtime/CFRuntime.h"

namespace {

constexpr size_t kLargestSize = sizeof(CGRect);

// 0 for a type that cannot be wrapped.
size_t SizeOf(AXValueType type) {
    switch (type) {
        case kAXValueTypeCGPoint:
            return sizeof(CGPoint);
        case kAXValueTypeCGSize:
            return sizeof(CGSize);
        case kAXValueTypeCGRect:
            return sizeof(CGRect);
        case kAXValueTypeCFRange:
            return sizeof(CFRange);
        case kAXValueTypeAXError:
            return sizeof(AXError);
        case kAXValueTypeIllegal:
            break;
    }
    return 0;
}

}  // namespace

@interface AXValueObject : NSObject <NSCopying> {
  @public
    AXValueType _type;
    unsigned char _bytes[kLargestSize];  // zero beyond the structure
}
@end

@implementation AXValueObject

- (CFTypeID)cfTypeID {
    return AXValueGetTypeID();
}

- (BOOL)isEqual:(id)other {
    if (other == nil || AXValueGetType((AXValueRef)other) != _type) {
        return NO;
    }
    return std::memcmp(_bytes, ((AXValueObject*)other)->_bytes, sizeof _bytes) == 0;
}

- (NSUInteger)hash {
    NSUInteger words[kLargestSize / sizeof(NSUInteger)];
    std::memcpy(words, _bytes, sizeof words);
    NSUInteger hash = _type;
    for (const NSUInteger word : words) {
        hash = hash * 31 + word;
    }
    return hash;
}

- (id)copyWithZone:(NSZone*)zone {
    (void)zone;
    return [self retain];
}

- (NSString*)description {
    return [NSString stringWithFormat:@"<AXValue of type %u>", (unsigned)_type];
}

@end

CFTypeID AXValueGetTypeID() {
    static const CFTypeID type = core_foundation::RegisterType("AXValue");
    return type;
}

AXValueRef AXValueCreate(AXValueType theType, const void* valuePtr) {
    const size_t size = SizeOf(theType);
    if (size == 0 || valuePtr == nullptr) {
        return nullptr;
    }
    AXValueObject* object = [[AXValueObject alloc] init];
    object->_type = theType;
    std::memcpy(object->_bytes, valuePtr, size);
    return (AXValueRef)object;
}

AXValueType AXValueGetType(AXValueRef value) {
    static const Class valueClass = [AXValueObject class];
    if (value == nullptr || object_getClass((id)value) != valueClass) {
        return kAXValueTypeIllegal;
    }
    return ((AXValueObject*)value)->_type;
}

Boolean AXValueGetValue(AXValueRef value, AXValueType theType, void* valuePtr) {
    const size_t size = SizeOf(theType);
    if (size == 0 || valuePtr == nullptr || AXValueGetType(value) != theType) {
        return false;
    }
    std::memcpy(valuePtr, ((AXValueObject*)value)->_bytes, size);
    return true;
}
