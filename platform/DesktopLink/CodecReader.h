// Reads one MessagePack message item by item, trusting nothing in it.
//
// Every item costs at least one byte of the message, announced lengths and counts reserve nothing:
// what is allocated is in proportion to the bytes received. Once a read has failed, all later ones
// fail too, so a decoder may check at its end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/DesktopLink/Value.h"

namespace desktop_link {

class CodecReader {
  public:
    CodecReader(const std::uint8_t* bytes, std::size_t length);

    // True when every read succeeded and nothing is left over.
    bool Finished() const { return !failed_ && next_ == items_.size(); }

    bool Failed() const { return failed_; }

    // Takes an array of exactly this many items; they are read next.
    void ReadArray(std::size_t count);
    // Takes an array of any length and returns the length; its items are read next.
    std::size_t ReadArray();

    // Takes a nil if one is next.
    bool SkipNil();

    bool ReadBoolean();
    std::int64_t ReadInteger(std::int64_t smallest, std::int64_t largest);
    std::uint64_t ReadUnsigned();
    double ReadDouble();
    std::string ReadText();  // valid UTF-8
    ElementReference ReadElement();
    Point ReadPoint();
    Value ReadValue();

  private:
    friend struct CodecVisitor;

    enum class Kind : std::uint8_t {
        nil,
        boolean,
        positive,
        negative,
        number,
        text,
        bytes,
        extension,
        array,
        map
    };
    struct Item {
        Kind kind = Kind::nil;
        std::uint32_t size = 0;  // of text and bytes; count of array and map
        union {
            bool boolean;
            std::uint64_t positive = 0;
            std::int64_t negative;
            double number;
            const char* bytes;
        };
    };

    const Item& Take();
    const Item& Take(Kind kind);
    std::string TextOf(const Item& item);
    Value ValueOf(const Item& item);
    Value ExtensionOf(const Item& item);

    std::vector<Item> items_;
    std::size_t next_ = 0;
    bool failed_ = false;
};

}  // namespace desktop_link
