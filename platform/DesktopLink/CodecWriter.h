// Writes one MessagePack message item by item.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/DesktopLink/CodecTypes.h"
#include "platform/DesktopLink/Value.h"

namespace desktop_link {

class CodecWriter {
  public:
    void WriteArray(std::size_t count);  // its items are written next
    void WriteNil();
    void WriteBoolean(bool value);
    void WriteInteger(std::int64_t value);
    void WriteUnsigned(std::uint64_t value);
    void WriteDouble(double value);
    // Bytes that are not UTF-8 are written as an empty text: the other side would refuse the whole
    // message for them.
    void WriteText(const std::string& text);
    void WriteElement(const ElementReference& element);
    void WritePoint(const Point& point);
    // Anything deeper than kDeepestValue is written as nil.
    void WriteValue(const Value& value) { WriteValue(value, 0); }

    std::vector<std::uint8_t> TakeBytes() { return std::move(bytes_); }

    // Called by the packer.
    void write(const char* bytes, std::size_t count);

  private:
    void WriteValue(const Value& value, std::size_t depth);
    template <typename... Field>
    void WriteExtension(Extension type, Field... field);

    std::vector<std::uint8_t> bytes_;
};

}  // namespace desktop_link
