#import "platform/CoreFoundation/PropertyList/KeyedArchiverUID.h"
#include "tests/unit/CoreFoundation/PropertyList/ArchiverUID.h"

std::optional<std::uint32_t> ArchiverUIDValue(CFTypeRef object) {
    const id uid = (id)object;
    if (![uid isKindOfClass:[CFKeyedArchiverUID class]]) {
        return std::nullopt;
    }
    return [(CFKeyedArchiverUID*)uid value];
}
