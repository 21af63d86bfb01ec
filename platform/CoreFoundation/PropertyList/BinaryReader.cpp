#include "platform/CoreFoundation/PropertyList/BinaryReader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace property_list {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::string_view kHeader = "bplist0";  // and one byte of version
constexpr std::size_t kHeaderSize = 8;

// The last bytes of the document: five unused, the sort version, then what follows here.
constexpr std::size_t kTrailerSize = 32;
constexpr std::size_t kOffsetSizeAt = 6;
constexpr std::size_t kReferenceSizeAt = 7;
constexpr std::size_t kObjectCountAt = 8;
constexpr std::size_t kTopObjectAt = 16;
constexpr std::size_t kOffsetTableAt = 24;

// Most significant byte first; of more than eight bytes the last eight count.
std::uint64_t ReadNumber(Bytes bytes) {
    std::uint64_t value = 0;
    for (const std::uint8_t byte : bytes) {
        value = value << 8U | byte;
    }
    return value;
}

bool FitsIn(std::uint64_t value, std::size_t size) {
    return size >= sizeof(value) || value < std::uint64_t{1} << (8 * size);
}

}  // namespace

std::optional<BinaryDocument> BinaryDocument::Open(Bytes bytes) {
    if (bytes.size() < kHeaderSize + 1 + kTrailerSize ||
        !std::equal(kHeader.begin(), kHeader.end(), bytes.begin())) {
        return std::nullopt;
    }
    const Bytes trailer = bytes.last(kTrailerSize);
    const std::uint64_t tableStart = ReadNumber(trailer.subspan(kOffsetTableAt, 8));
    const std::uint64_t tableEnd = bytes.size() - kTrailerSize;
    BinaryDocument document;
    document.offsetSize_ = trailer[kOffsetSizeAt];
    document.referenceSize_ = trailer[kReferenceSizeAt];
    document.objectCount_ = ReadNumber(trailer.subspan(kObjectCountAt, 8));
    document.topObject_ = ReadNumber(trailer.subspan(kTopObjectAt, 8));
    if (document.offsetSize_ == 0 || document.referenceSize_ == 0 ||
        document.topObject_ >= document.objectCount_ || tableStart <= kHeaderSize ||
        tableStart >= tableEnd || !FitsIn(tableStart, document.offsetSize_) ||
        !FitsIn(document.objectCount_, document.referenceSize_)) {
        return std::nullopt;
    }
    const std::uint64_t tableSize = tableEnd - tableStart;
    if (tableSize % document.offsetSize_ != 0 ||
        tableSize / document.offsetSize_ != document.objectCount_) {
        return std::nullopt;
    }
    document.objects_ = bytes.first(tableStart);
    document.offsetTable_ = bytes.subspan(tableStart, tableSize);
    for (std::size_t at = 0; at < tableSize; at += document.offsetSize_) {
        if (ReadNumber(document.offsetTable_.subspan(at, document.offsetSize_)) >= tableStart) {
            return std::nullopt;
        }
    }
    return document;
}

class BinaryReader {
  public:
    BinaryReader(const BinaryDocument& document, const ObjectMaker& make)
        : document_(document), make_(make), left_(document.objects_.size()) {}

    // An object that others refer to repeatedly is created once. Unlike in XML, a leaf is a level.
    Object ReadObject(std::uint64_t reference, int depth) {
        if (reference >= document_.objectCount_ || depth > kDeepestNesting) {
            return nullptr;
        }
        const std::uint64_t offset = ReadNumber(document_.offsetTable_.subspan(
            reference * document_.offsetSize_, document_.offsetSize_));
        if (const auto made = made_.find(offset); made != made_.end()) {
            return Object(CFRetain(made->second.get()));
        }
        if (offset < kHeaderSize || !beingRead_.insert(offset).second) {
            return nullptr;
        }
        Object object = ReadMarked(document_.objects_.subspan(offset), depth);
        beingRead_.erase(offset);
        if (object != nullptr) {
            made_.emplace(offset, Object(CFRetain(object.get())));
        }
        return object;
    }

  private:
    // The marker byte: the kind of object in the upper half, its size or count in the lower.
    Object ReadMarked(Bytes bytes, int depth) {
        const unsigned kind = bytes.front() >> 4U;
        const unsigned low = bytes.front() & 0xFU;
        const Bytes rest = bytes.subspan(1);
        switch (kind) {
            case 0x0:
                return ReadConstant(low);
            case 0x1:
                return ReadInteger(rest, low);
            case 0x2:
                return ReadReal(rest, low);
            case 0x3:
                return low == 3 && rest.size() >= 8
                           ? ObjectMaker::Date(std::bit_cast<double>(ReadNumber(rest.first(8))))
                           : nullptr;
            case 0x8:
                return ReadUID(rest, low);
            default:
                return ReadCounted(kind, rest, low, depth);
        }
    }

    static Object ReadConstant(unsigned low) {
        switch (low) {
            case 0x0:
                return ObjectMaker::Null();
            case 0x8:
                return ObjectMaker::Boolean(false);
            case 0x9:
                return ObjectMaker::Boolean(true);
            default:
                return nullptr;
        }
    }

    // 1, 2 or 4 bytes unsigned, 8 signed; of 16 the lower 64 bits, unsigned.
    static Object ReadInteger(Bytes rest, unsigned log2OfSize) {
        const std::size_t size = std::size_t{1} << log2OfSize;
        if (log2OfSize > 4 || rest.size() < size) {
            return nullptr;
        }
        const std::uint64_t value = ReadNumber(rest.first(size));
        return size == 16 ? ObjectMaker::WideInteger(value)
                          : ObjectMaker::Integer(static_cast<std::int64_t>(value));
    }

    static Object ReadReal(Bytes rest, unsigned log2OfSize) {
        if (log2OfSize == 2 && rest.size() >= 4) {
            const auto bits = static_cast<std::uint32_t>(ReadNumber(rest.first(4)));
            return ObjectMaker::Real(std::bit_cast<float>(bits));
        }
        if (log2OfSize == 3 && rest.size() >= 8) {
            return ObjectMaker::Real(std::bit_cast<double>(ReadNumber(rest.first(8))));
        }
        return nullptr;
    }

    static Object ReadUID(Bytes rest, unsigned sizeLessOne) {
        const std::size_t size = sizeLessOne + 1;
        if (rest.size() < size) {
            return nullptr;
        }
        const std::uint64_t value = ReadNumber(rest.first(size));
        return FitsIn(value, 4) ? ObjectMaker::KeyedArchiverUID(static_cast<std::uint32_t>(value))
                                : nullptr;
    }

    // A count of 15 or more follows the marker, as a separate integer object.
    static std::optional<std::uint64_t> TakeCount(Bytes& rest, unsigned low) {
        if (low != 0xF) {
            return low;
        }
        if (rest.empty() || rest.front() >> 4U != 0x1) {
            return std::nullopt;
        }
        const std::size_t size = std::size_t{1} << (rest.front() & 0xFU);
        if (rest.size() - 1 < size) {
            return std::nullopt;
        }
        const std::uint64_t count = ReadNumber(rest.subspan(1, size));
        rest = rest.subspan(1 + size);
        return count;
    }

    // Objects do not overlap, so that all of them together are no longer than their part of the
    // document. Without this check its content could take the square of its size: a text at every
    // byte, each of which continues to the end.
    bool TakeItems(std::uint64_t count) {
        if (count > left_) {
            return false;
        }
        left_ -= count;
        return true;
    }

    Object ReadCounted(unsigned kind, Bytes rest, unsigned low, int depth) {
        const std::optional<std::uint64_t> count = TakeCount(rest, low);
        // No item takes less than a byte, which keeps the products below from overflowing.
        if (!count || *count > rest.size() || !TakeItems(*count)) {
            return nullptr;
        }
        switch (kind) {
            case 0x4:
                return make_.Data(rest.first(*count));
            case 0x5:
                return ReadLatin1(rest.first(*count));
            case 0x6:
                return ReadUtf16(rest, *count);
            case 0xA:
                return ReadArray(rest, *count, depth);
            case 0xC:
                return ReadSet(rest, *count, depth);
            case 0xD:
                return ReadDictionary(rest, *count, depth);
            default:
                return nullptr;
        }
    }

    // Meant for ASCII; a byte above 0x7F is the Latin-1 character.
    Object ReadLatin1(Bytes bytes) const {
        return make_.String(std::u16string(bytes.begin(), bytes.end()));
    }

    // An empty one is refused: an empty string is written in the ASCII form.
    Object ReadUtf16(Bytes rest, std::uint64_t count) const {
        if (count == 0 || rest.size() / 2 < count) {
            return nullptr;
        }
        std::u16string text;
        text.reserve(count);
        for (std::size_t index = 0; index < count; ++index) {
            text.push_back(static_cast<char16_t>(ReadNumber(rest.subspan(2 * index, 2))));
        }
        return make_.String(text);
    }

    // The objects behind `count` references; false when one of them is malformed.
    bool ReadReferences(Bytes references, std::uint64_t count, int depth,
                        std::vector<Object>& objects) {
        if (references.size() / document_.referenceSize_ < count) {
            return false;
        }
        objects.reserve(count);
        for (std::size_t index = 0; index < count; ++index) {
            const std::uint64_t reference = ReadNumber(
                references.subspan(index * document_.referenceSize_, document_.referenceSize_));
            Object object = ReadObject(reference, depth + 1);
            if (object == nullptr) {
                return false;
            }
            objects.push_back(std::move(object));
        }
        return true;
    }

    Object ReadArray(Bytes rest, std::uint64_t count, int depth) {
        std::vector<Object> items;
        return ReadReferences(rest, count, depth, items) ? make_.Array(items) : nullptr;
    }

    static bool MayAllBeKeys(const std::vector<Object>& objects) {
        return std::ranges::all_of(
            objects, [](const Object& object) { return ObjectMaker::MayBeKey(object.get()); });
    }

    // Containers as items are refused: comparing two that share their parts at every level takes
    // time that doubles with each level.
    Object ReadSet(Bytes rest, std::uint64_t count, int depth) {
        std::vector<Object> items;
        return ReadReferences(rest, count, depth, items) && MayAllBeKeys(items)
                   ? ObjectMaker::Set(items)
                   : nullptr;
    }

    // All keys, then all values.
    Object ReadDictionary(Bytes rest, std::uint64_t count, int depth) {
        std::vector<Object> keys;
        std::vector<Object> values;
        if (!ReadReferences(rest, count, depth, keys) || !MayAllBeKeys(keys) ||
            !ReadReferences(rest.subspan(count * document_.referenceSize_), count, depth, values)) {
            return nullptr;
        }
        return make_.Dictionary(keys, values, ObjectMaker::Duplicates::kFirstWins);
    }

    const BinaryDocument& document_;
    const ObjectMaker& make_;
    std::size_t left_;  // items for which the document still has bytes
    std::unordered_map<std::uint64_t, Object> made_;  // by offset
    std::unordered_set<std::uint64_t> beingRead_;     // offsets of the containers around
};

Object BinaryDocument::Read(const ObjectMaker& make) const {
    return BinaryReader(*this, make).ReadObject(topObject_, 0);
}

}  // namespace property_list
