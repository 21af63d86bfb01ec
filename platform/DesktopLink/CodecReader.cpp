#include "platform/DesktopLink/CodecReader.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <msgpack.hpp>

#include "platform/DesktopLink/CodecTypes.h"
#include "platform/DesktopLink/Messages.h"
#include "platform/DesktopLink/Utf8.h"

namespace desktop_link {

// Collects the items of a message; returning false stops the parser.
struct CodecVisitor : msgpack::null_visitor {
    using Kind = CodecReader::Kind;

    explicit CodecVisitor(std::vector<CodecReader::Item>& itemsOfMessage) : items(itemsOfMessage) {}

    CodecReader::Item& Add(Kind kind, std::uint32_t size = 0) {
        CodecReader::Item& item = items.emplace_back();
        item.kind = kind;
        item.size = size;
        return item;
    }
    bool AddBytes(Kind kind, const char* bytes, std::uint32_t size) {
        Add(kind, size).bytes = bytes;
        return true;
    }
    bool Enter(Kind kind, std::uint32_t count) {
        Add(kind, count);
        return ++depth <= kDeepestValue + kEnvelopeDepth;
    }
    bool Leave() {
        --depth;
        return true;
    }

    bool visit_nil() {
        Add(Kind::nil);
        return true;
    }
    bool visit_boolean(bool value) {
        Add(Kind::boolean).boolean = value;
        return true;
    }
    bool visit_positive_integer(std::uint64_t value) {
        Add(Kind::positive).positive = value;
        return true;
    }
    bool visit_negative_integer(std::int64_t value) {
        Add(Kind::negative).negative = value;
        return true;
    }
    bool visit_float32(float /*value*/) { return false; }
    bool visit_float64(double value) {
        Add(Kind::number).number = value;
        return true;
    }
    bool visit_str(const char* text, std::uint32_t size) {
        return AddBytes(Kind::text, text, size);
    }
    bool visit_bin(const char* bytes, std::uint32_t size) {
        return AddBytes(Kind::bytes, bytes, size);
    }
    bool visit_ext(const char* bytes, std::uint32_t size) {
        return AddBytes(Kind::extension, bytes, size);
    }
    bool start_array(std::uint32_t count) { return Enter(Kind::array, count); }
    bool end_array() { return Leave(); }
    bool start_map(std::uint32_t count) { return Enter(Kind::map, count); }
    bool end_map() { return Leave(); }

    std::vector<CodecReader::Item>& items;
    std::size_t depth = 0;
};

CodecReader::CodecReader(const std::uint8_t* bytes, std::size_t length) {
    CodecVisitor visitor(items_);
    std::size_t end = 0;
    // The parser reads characters; the bytes are the same.
    const char* characters = reinterpret_cast<const char*>(bytes);
    failed_ = length == 0 || !msgpack::parse(characters, length, end, visitor) || end != length;
}

const CodecReader::Item& CodecReader::Take() {
    static const Item kNothing{};
    if (failed_ || next_ == items_.size()) {
        failed_ = true;
        return kNothing;
    }
    return items_[next_++];
}

const CodecReader::Item& CodecReader::Take(Kind kind) {
    const Item& item = Take();
    failed_ = failed_ || item.kind != kind;
    return item;
}

void CodecReader::ReadArray(std::size_t count) {
    const Item& item = Take(Kind::array);
    failed_ = failed_ || item.size != count;
}

std::size_t CodecReader::ReadArray() {
    const Item& item = Take(Kind::array);
    return failed_ ? 0 : item.size;
}

bool CodecReader::SkipNil() {
    if (failed_ || next_ == items_.size() || items_[next_].kind != Kind::nil) {
        return false;
    }
    ++next_;
    return true;
}

bool CodecReader::ReadBoolean() {
    const Item& item = Take(Kind::boolean);
    return !failed_ && item.boolean;
}

std::int64_t CodecReader::ReadInteger(std::int64_t smallest, std::int64_t largest) {
    const Item& item = Take();
    std::int64_t value = 0;
    if (item.kind == Kind::negative) {
        value = item.negative;
    } else if (item.kind == Kind::positive &&
               item.positive <= std::uint64_t{std::numeric_limits<std::int64_t>::max()}) {
        value = static_cast<std::int64_t>(item.positive);
    } else {
        failed_ = true;
    }
    failed_ = failed_ || value < smallest || value > largest;
    return failed_ ? 0 : value;
}

std::uint64_t CodecReader::ReadUnsigned() {
    const Item& item = Take(Kind::positive);
    return failed_ ? 0 : item.positive;
}

double CodecReader::ReadDouble() {
    const Item& item = Take(Kind::number);
    return failed_ ? 0 : item.number;
}

std::string CodecReader::TextOf(const Item& item) {
    std::string text;
    if (item.size != 0) {  // the parser gives a null pointer for the empty text
        text.assign(item.bytes, item.size);
    }
    failed_ = failed_ || !IsUtf8(text);
    return text;
}

std::string CodecReader::ReadText() {
    const Item& item = Take(Kind::text);
    return failed_ ? std::string() : TextOf(item);
}

ElementReference CodecReader::ReadElement() {
    const Value value = ExtensionOf(Take(Kind::extension));
    const auto* element = std::get_if<ElementReference>(&value.content);
    failed_ = failed_ || element == nullptr;
    return failed_ ? ElementReference{} : *element;
}

Point CodecReader::ReadPoint() {
    const Value value = ExtensionOf(Take(Kind::extension));
    const auto* point = std::get_if<Point>(&value.content);
    failed_ = failed_ || point == nullptr;
    return failed_ ? Point{} : *point;
}

Value CodecReader::ReadValue() {
    return ValueOf(Take());
}

// Recursion is limited to the depth that the visitor accepted.
Value CodecReader::ValueOf(const Item& item) {
    if (failed_) {
        return {};
    }
    switch (item.kind) {
        case Kind::nil:
            return {};
        case Kind::boolean:
            return {item.boolean};
        case Kind::positive:
        case Kind::negative:
            --next_;
            return {ReadInteger(std::numeric_limits<std::int64_t>::min(),
                                std::numeric_limits<std::int64_t>::max())};
        case Kind::number:
            return {item.number};
        case Kind::text:
            return {TextOf(item)};
        case Kind::bytes: {
            Bytes bytes;
            bytes.content.assign(item.bytes, item.bytes + item.size);
            return {std::move(bytes)};
        }
        case Kind::extension:
            return ExtensionOf(item);
        case Kind::array: {
            Array array;
            for (std::uint32_t left = item.size; left != 0 && !failed_; --left) {
                array.push_back(ReadValue());
            }
            return {std::move(array)};
        }
        case Kind::map: {
            Dictionary dictionary;
            for (std::uint32_t left = item.size; left != 0 && !failed_; --left) {
                std::string key = ReadText();
                dictionary.push_back({std::move(key), ReadValue()});
            }
            return {std::move(dictionary)};
        }
    }
    failed_ = true;
    return {};
}

namespace {

// Copies the fields from an extension's content when its length is exactly theirs.
template <typename... Field>
bool Unpack(const char* content, std::size_t size, Field&... field) {
    if (size != (sizeof(Field) + ...)) {
        return false;
    }
    ((std::memcpy(&field, content, sizeof field), content += sizeof field), ...);
    return true;
}

}  // namespace

Value CodecReader::ExtensionOf(const Item& item) {
    if (failed_ || item.size < 1) {
        failed_ = true;
        return {};
    }
    const auto type = static_cast<Extension>(item.bytes[0]);
    const char* content = item.bytes + 1;
    const std::size_t size = item.size - 1;
    Point point;
    Size extent;
    Range range;
    ErrorValue error;
    ElementReference element;
    switch (type) {
        case Extension::point:
            failed_ = !Unpack(content, size, point.x, point.y);
            return {point};
        case Extension::size:
            failed_ = !Unpack(content, size, extent.width, extent.height);
            return {extent};
        case Extension::rect:
            failed_ = !Unpack(content, size, point.x, point.y, extent.width, extent.height);
            return {Rect{point, extent}};
        case Extension::range:
            failed_ = !Unpack(content, size, range.location, range.length);
            return {range};
        case Extension::error:
            failed_ = !Unpack(content, size, error.code);
            return {error};
        case Extension::element:
            failed_ = !Unpack(content, size, element.pid, element.id);
            return {element};
    }
    failed_ = true;
    return {};
}

}  // namespace desktop_link
