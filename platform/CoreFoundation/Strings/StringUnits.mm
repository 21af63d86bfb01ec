#include "platform/CoreFoundation/Strings/StringUnits.h"

#include "platform/CoreFoundation/Strings/CodeUnitString.h"

namespace core_foundation {

StringUnits::StringUnits(NSString* string, NSRange range) {
    char16_t* units = near_.data();
    if (range.length > kShort) {
        far_ = std::make_unique_for_overwrite<char16_t[]>(range.length);
        units = far_.get();
    }
    [string getCharacters:reinterpret_cast<unichar*>(units) range:range];
    view_ = std::u16string_view(units, range.length);
}

bool SameUnits(NSString* first, NSString* second) {
    if (first == second) {
        return true;
    }
    return [first length] == [second length] &&
           StringUnits(first).view() == StringUnits(second).view();
}

NSString* NewString(std::u16string_view units) {
    NSString* string =
        [[NSString alloc] initWithCharacters:reinterpret_cast<const unichar*>(units.data())
                                      length:units.size()];
    if ([string length] == units.size()) {
        return string;
    }
    [string release];
    return [[CodeUnitString alloc] initWithUnits:units];
}

}  // namespace core_foundation
