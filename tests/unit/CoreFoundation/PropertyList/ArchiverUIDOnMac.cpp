#include <cstdlib>

#include "VEKCommon/OwnedReference.h"
#include "tests/unit/CoreFoundation/PropertyList/ArchiverUID.h"
#include "tests/unit/CoreFoundation/PropertyList/TaggedTree.h"

// The description ends with "{value = 5}".
std::optional<std::uint32_t> ArchiverUIDValue(CFTypeRef object) {
    const OwnedReference<CFStringRef> type(CFCopyTypeIDDescription(CFGetTypeID(object)));
    if (Utf8(type.get()) != "CFKeyedArchiverUID") {
        return std::nullopt;
    }
    const OwnedReference<CFStringRef> description(CFCopyDescription(object));
    const std::string text = Utf8(description.get());
    constexpr std::string_view kMark = "value = ";
    const std::size_t mark = text.rfind(kMark);
    if (mark == std::string::npos) {
        return std::nullopt;
    }
    return static_cast<std::uint32_t>(std::strtoul(text.c_str() + mark + kMark.size(), nullptr, 0));
}
