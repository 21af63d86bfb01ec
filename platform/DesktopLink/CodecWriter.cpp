#include "platform/DesktopLink/CodecWriter.h"

#include <msgpack.hpp>

#include "platform/DesktopLink/Messages.h"
#include "platform/DesktopLink/Utf8.h"

namespace desktop_link {

namespace {

using Packer = msgpack::packer<CodecWriter>;

template <typename... Alternative>
struct Overload : Alternative... {
    using Alternative::operator()...;
};
template <typename... Alternative>
Overload(Alternative...) -> Overload<Alternative...>;

}  // namespace

void CodecWriter::write(const char* bytes, std::size_t count) {
    bytes_.insert(bytes_.end(), bytes, bytes + count);
}

void CodecWriter::WriteArray(std::size_t count) {
    Packer(*this).pack_array(static_cast<std::uint32_t>(count));
}

void CodecWriter::WriteNil() {
    Packer(*this).pack_nil();
}

void CodecWriter::WriteBoolean(bool value) {
    Packer(*this).pack(value);
}

void CodecWriter::WriteInteger(std::int64_t value) {
    Packer(*this).pack_int64(value);
}

void CodecWriter::WriteUnsigned(std::uint64_t value) {
    Packer(*this).pack_uint64(value);
}

void CodecWriter::WriteDouble(double value) {
    // Not pack_double: that writes whole numbers as integers, and the type of a value would change.
    char bytes[9];
    bytes[0] = static_cast<char>(0xCB);
    const auto bits = std::bit_cast<std::uint64_t>(value);
    for (unsigned i = 0; i < 8; ++i) {
        bytes[1 + i] = static_cast<char>(bits >> (56 - 8 * i));
    }
    write(bytes, sizeof bytes);
}

void CodecWriter::WriteText(const std::string& text) {
    const auto size = static_cast<std::uint32_t>(IsUtf8(text) ? text.size() : 0);
    Packer packer(*this);
    packer.pack_str(size);
    packer.pack_str_body(text.data(), size);
}

template <typename... Field>
void CodecWriter::WriteExtension(Extension type, Field... field) {
    Packer(*this).pack_ext((sizeof(Field) + ...), static_cast<std::int8_t>(type));
    (write(reinterpret_cast<const char*>(&field), sizeof field), ...);
}

void CodecWriter::WriteElement(const ElementReference& element) {
    WriteExtension(Extension::element, element.pid, element.id);
}

void CodecWriter::WritePoint(const Point& point) {
    WriteExtension(Extension::point, point.x, point.y);
}

void CodecWriter::WriteValue(const Value& value, std::size_t depth) {
    if (depth > kDeepestValue) {
        WriteNil();
        return;
    }
    std::visit(
        Overload{
            [&](std::monostate) { WriteNil(); },
            [&](bool flag) { WriteBoolean(flag); },
            [&](std::int64_t number) { WriteInteger(number); },
            [&](double number) { WriteDouble(number); },
            [&](const std::string& text) { WriteText(text); },
            [&](const Point& point) { WritePoint(point); },
            [&](const Size& size) { WriteExtension(Extension::size, size.width, size.height); },
            [&](const Rect& rect) {
                WriteExtension(Extension::rect, rect.origin.x, rect.origin.y, rect.size.width,
                               rect.size.height);
            },
            [&](const Range& range) {
                WriteExtension(Extension::range, range.location, range.length);
            },
            [&](const ErrorValue& error) { WriteExtension(Extension::error, error.code); },
            [&](const ElementReference& element) { WriteElement(element); },
            [&](const Bytes& bytes) {
                const auto size = static_cast<std::uint32_t>(bytes.content.size());
                Packer(*this).pack_bin(size);
                bytes_.insert(bytes_.end(), bytes.content.begin(), bytes.content.end());
            },
            [&](const Array& array) {
                WriteArray(array.size());
                for (const Value& item : array) {
                    WriteValue(item, depth + 1);
                }
            },
            [&](const Dictionary& dictionary) {
                Packer(*this).pack_map(static_cast<std::uint32_t>(dictionary.size()));
                for (const auto& [key, item] : dictionary) {
                    WriteText(key);
                    WriteValue(item, depth + 1);
                }
            },
        },
        value.content);
}

}  // namespace desktop_link
