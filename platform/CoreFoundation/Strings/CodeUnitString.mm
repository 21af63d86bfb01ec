#include "platform/CoreFoundation/Strings/CodeUnitString.h"

#include <algorithm>

@implementation CodeUnitString

- (id)initWithUnits:(std::u16string_view)units {
    self = [super init];
    _length = units.size();
    _units = new char16_t[_length];
    std::copy(units.begin(), units.end(), _units);
    return self;
}

- (void)dealloc {
    delete[] _units;
    [super dealloc];
}

- (NSUInteger)length {
    return _length;
}

- (unichar)characterAtIndex:(NSUInteger)index {
    unichar unit = 0;
    [self getCharacters:&unit range:NSMakeRange(index, 1)];
    return unit;
}

- (void)getCharacters:(unichar*)buffer range:(NSRange)range {
    if (range.location > _length || range.length > _length - range.location) {
        [NSException raise:NSRangeException
                    format:@"range outside the string of %lu units", _length];
    }
    std::copy_n(_units + range.location, range.length, buffer);
}

- (id)copyWithZone:(NSZone*)zone {
    (void)zone;
    return [self retain];
}

@end
