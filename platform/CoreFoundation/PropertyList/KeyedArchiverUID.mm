#import "platform/CoreFoundation/PropertyList/KeyedArchiverUID.h"

@implementation CFKeyedArchiverUID

- (instancetype)initWithValue:(std::uint32_t)value {
    self = [super init];
    _value = value;
    return self;
}

- (std::uint32_t)value {
    return _value;
}

- (BOOL)isEqual:(id)other {
    return [other isKindOfClass:[CFKeyedArchiverUID class]] &&
           [(CFKeyedArchiverUID*)other value] == _value;
}

- (NSUInteger)hash {
    return _value;
}

@end
