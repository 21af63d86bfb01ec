#include "platform/CoreFoundation/PropertyList/PropertyListReader.h"

#include <optional>
#include <string>

#include "platform/CoreFoundation/PropertyList/BinaryReader.h"
#include "platform/CoreFoundation/PropertyList/OpenStepReader.h"
#include "platform/CoreFoundation/PropertyList/Text.h"
#include "platform/CoreFoundation/PropertyList/XmlReader.h"

namespace property_list {

Document ReadPropertyList(std::span<const std::uint8_t> bytes, CFOptionFlags options) {
    const ObjectMaker make(options);
    if (const std::optional<BinaryDocument> binary = BinaryDocument::Open(bytes)) {
        return {binary->Read(make), kCFPropertyListBinaryFormat_v1_0};
    }
    const std::optional<std::u16string> text = DecodeText(bytes);
    if (!text || text->empty()) {
        return {nullptr, kCFPropertyListOpenStepFormat};
    }
    if (Object root = ReadXml(*text, make)) {
        return {std::move(root), kCFPropertyListXMLFormat_v1_0};
    }
    return {ReadOpenStep(*text, make), kCFPropertyListOpenStepFormat};
}

}  // namespace property_list
