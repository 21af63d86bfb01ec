// Every record's check, reader and writer. The first byte chooses the record, the rest is its body,
// in memory of exactly its size.
//
// What must hold: the check accepts no more than is there and refuses the record without its last
// byte, the reader stays within what the check accepted, and what is written is read as the same.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "VEKCommon/ByteBuffers.h"
#include "fuzz/Check.h"
#include "fuzz/Choices.h"
#include "fuzz/StartUp.h"
#include "protocol/RequestOperations.h"
#include "protocol/ServerSpec.h"
#include "protocol/SharedFamilyRecords.h"
#include "protocol/Truncation.h"

namespace {

using Body = std::span<const std::uint8_t>;

// Memory of exactly that size: a read beyond it is detected.
class Exact {
  public:
    explicit Exact(Body bytes) : memory_(new std::uint8_t[bytes.size()]), size_(bytes.size()) {
        std::copy(bytes.begin(), bytes.end(), memory_.get());
    }
    const std::uint8_t* Bytes() const { return memory_.get(); }
    std::size_t Size() const { return size_; }

  private:
    std::unique_ptr<std::uint8_t[]> memory_;
    std::size_t size_;
};

// The size of the complete record at the start of the body.
template <typename Record>
std::optional<std::size_t> CheckedSize(Body body) {
    const Exact whole(body);
    const std::optional<std::size_t> size = Record::CompleteSize(whole.Bytes(), whole.Size());
    if (!size) {
        return std::nullopt;
    }
    fuzz::Check(*size <= body.size(), "a complete record is no longer than the body");
    fuzz::Check(*size >= Record::kSmallestSize, "a complete record has its smallest size");
    const Exact alone(body.first(*size));
    fuzz::Check(Record::CompleteSize(alone.Bytes(), alone.Size()) == size,
                "a record alone is as long as with something behind it");
    if (*size > 0) {
        const Exact cut(body.first(*size - 1));
        fuzz::Check(!Record::CompleteSize(cut.Bytes(), cut.Size()),
                    "a record without its last byte is not complete");
    }
    return size;
}

std::vector<std::uint8_t> Written(SMessageSpec& record, std::size_t size) {
    const unsigned char* bytes = record.Serialize();
    fuzz::Check(bytes != nullptr, "a record that is written has bytes");
    return {bytes, bytes + size};
}

template <typename Record>
void ReadAndWrite(Body body) {
    const auto size = CheckedSize<Record>(body);
    if (!size) {
        return;
    }
    const Exact alone(body.first(*size));
    Record record;
    record.Deserialize(alone.Bytes());
    fuzz::Check(record.SerialBufferSize() == *size, "what was read has its size on the wire");
    const std::vector<std::uint8_t> written = Written(record, *size);
    fuzz::Check(std::equal(written.begin(), written.end(), alone.Bytes()),
                "what was read is written as it was");
}

// Its flag is written as 0 or 1, whatever it was.
void ReadAndWriteMouse(Body body) {
    const auto size = CheckedSize<SSendMouseSpec>(body);
    if (!size) {
        return;
    }
    SSendMouseSpec first;
    first.Deserialize(Exact(body.first(*size)).Bytes());
    const std::vector<std::uint8_t> written = Written(first, *size);
    fuzz::Check(std::equal(written.begin(), written.begin() + 12, body.begin()),
                "a mouse request is written as it was");
    fuzz::Check(written[12] == (first.flag != 0 ? 1 : 0), "a click is 0 or 1");
    ReadAndWrite<SSendMouseSpec>(written);
}

template <typename Record>
void ReadOnly(Body body) {
    if (const auto size = CheckedSize<Record>(body)) {
        const Exact alone(body.first(*size));
        Record record;
        record.Deserialize(alone.Bytes());
        fuzz::Check(record.Serialize() == nullptr && record.SerialBufferSize() == 0,
                    "a record that is only read has no bytes");
    }
}

// A pad byte is written as 0, whatever it was.
void ReadAndWriteEnvelope(Body body) {
    const auto size = CheckedSize<SServerSpec>(body);
    if (!size) {
        return;
    }
    const Exact alone(body.first(*size));
    SServerSpec record;
    record.Deserialize(alone.Bytes());
    fuzz::Check(record.SerialBufferSize() == *size, "an envelope has its size on the wire");
    const std::vector<std::uint8_t> written = Written(record, *size);
    fuzz::Check(std::equal(written.begin(), written.begin() + 8 + record.length, alone.Bytes()),
                "an envelope is written as it was");
    const SServerSpec made(record.kind, record.length, record.data.data());
    fuzz::Check(made.data == record.data, "an envelope that was made holds what one read holds");
}

void ReadAndWriteWindow(Body body) {
    const auto size = CheckedSize<SWindowRequestSpec>(body);
    if (!size) {
        return;
    }
    const Exact alone(body.first(*size));
    SWindowRequestSpec read;
    read.Deserialize(alone.Bytes());
    fuzz::Check(read.SerialBufferSize() == *size, "a window request has its size on the wire");
    fuzz::Check(read.Serialize() == nullptr, "a window request that was read is not written");
    SWindowRequestSpec made(read.name, read.flag);
    const std::vector<std::uint8_t> written = Written(made, made.SerialBufferSize());
    fuzz::Check(
        std::equal(written.begin() + 4, written.end(), alone.Bytes() + 4, alone.Bytes() + *size),
        "a window's title is written as it was");
    SWindowRequestSpec again;
    again.Deserialize(written.data());
    fuzz::Check(again.flag == read.flag && again.name == read.name,
                "what is written of a window request is read again");
}

std::size_t WrittenSize(const STargetWindowRequestSpec& record) {
    std::size_t size = STargetWindowRequestSpec::kSmallestSize;
    for (const VEK_Driver_TargetWindowInfo& info : record.targets) {
        size += STargetWindowRequestSpec::CalcInfoFieldSize(info);
        size += info.hasSubWindow ? std::strlen(info.subWindowName) + 1 : 0;
    }
    return size;
}

// Flags are written as 0 and 1 and the kind as one byte's worth, so that the second writing counts.
void ReadAndWriteTargets(Body body) {
    const auto size = CheckedSize<STargetWindowRequestSpec>(body);
    if (!size) {
        return;
    }
    const Exact alone(body.first(*size));
    STargetWindowRequestSpec first;
    first.Deserialize(alone.Bytes());
    fuzz::Check(WrittenSize(first) == *size, "the candidates take what they took");
    const std::vector<std::uint8_t> written = Written(first, WrittenSize(first));
    const Exact copy(written);
    fuzz::Check(STargetWindowRequestSpec::CompleteSize(copy.Bytes(), copy.Size()) == *size,
                "written candidates are a complete record");
    STargetWindowRequestSpec second;
    second.Deserialize(copy.Bytes());
    fuzz::Check(Written(second, WrittenSize(second)) == written,
                "candidates are written as they were");
    fuzz::Check(first.SerialBufferSize() == second.SerialBufferSize(),
                "candidates keep their serial size");
    const std::vector<VEK_Driver_TargetWindowInfo> infos(first.targets.begin(),
                                                         first.targets.end());
    STargetWindowRequestSpec made(infos.data(), static_cast<unsigned int>(infos.size()));
    fuzz::Check(
        made.SerialBufferSize() == first.SerialBufferSize() && Written(made, *size) == written,
        "candidates that were made are written like those read");
    Written(made, made.targets.size() == 1 ? *size : made.SerialBufferSize());
}

// Every number that a desktop can give becomes a field.
void Truncate(Body body) {
    fuzz::Choices numbers(body, fuzz::End::front);
    double value[4];
    for (double& each : value) {
        each = numbers.Raw<double>();
    }
    const CGPoint point = CGPointMake(value[0], value[1]);
    const CGSize size = CGSizeMake(value[2], value[3]);
    SPointSpec position(point);
    SPointSizeSpec frame(point, size);
    STargetPointSizeSpec target(numbers.Raw<std::uint32_t>(), point, size);
    SSendMouseSpec mouse(point, numbers.Raw<std::uint32_t>(), numbers.Raw<std::uint32_t>());
    ReadAndWrite<SPointSpec>({position.Serialize(), 8});
    ReadAndWrite<SPointSizeSpec>({frame.Serialize(), 16});
    ReadAndWrite<STargetPointSizeSpec>({target.Serialize(), 20});
    ReadAndWriteMouse({mouse.Serialize(), 16});
    fuzz::Check(position.x == TruncatedToInt(value[0]) && frame.height == TruncatedToInt(value[3]),
                "coordinates are truncated everywhere alike");
}

void Store(Body body) {
    fuzz::Choices numbers(body, fuzz::End::front);
    const auto number = numbers.Raw<std::uint32_t>();
    unsigned char bytes[4] = {};
    UToBuffer::StoreLong(number, bytes);
    fuzz::Check(UFromBuffer::GetLong(bytes) == number, "a stored number is read again");
    UToBuffer::StoreByte(bytes[1], bytes);
    fuzz::Check(UFromBuffer::GetByte(bytes) == bytes[1], "a stored byte is read again");
    UToBuffer::StoreShort(static_cast<unsigned short>(number), bytes);
    fuzz::Check(UFromBuffer::GetShort(bytes) == (bytes[0] | bytes[1] << 8),
                "a short number is read with its last byte as the highest");
    const std::vector<std::uint8_t> rest = numbers.Bytes(256);
    std::vector<std::uint8_t> stored(rest.size());
    std::vector<std::uint8_t> got(rest.size());
    const auto count = static_cast<unsigned int>(rest.size());
    fuzz::Check(UToBuffer::StoreBytes(rest.data(), count, stored.data()) == count &&
                    UFromBuffer::GetBytes(stored.data(), got.data(), count) == count && got == rest,
                "stored bytes are read again");
    if (rest.empty() || rest[0] >= rest.size()) {
        return;
    }
    const Exact text(rest);
    const auto copy = std::make_unique<unsigned char[]>(std::size_t{rest[0]} + 1);
    const unsigned char* end = UToBuffer::StorePStrAsCStr(text.Bytes(), copy.get());
    fuzz::Check(end == copy.get() + rest[0] && *end == 0, "a text ends where it is said to");
}

void ReadElement(Body body) {
    if (const auto size = CheckedSize<ElementIdentifier>(body)) {
        ElementIdentifier element;
        element.Deserialize(Exact(body.first(*size)).Bytes());
        fuzz::Check(CFStringHasPrefix(element.Text(), CFSTR("_NS:")), "an element has a name");
    }
}

constexpr void (*kRecords[])(Body) = {
    ReadAndWrite<SOneIntSpec>,
    ReadAndWrite<STwoIntSpec>,
    ReadAndWrite<SThreeIntSpec>,
    ReadAndWrite<SPointSpec>,
    ReadAndWrite<SPointSizeSpec>,
    ReadAndWrite<STargetPointSizeSpec>,
    ReadAndWrite<SSendKeystrokeSpec>,
    ReadAndWriteMouse,
    ReadAndWrite<SServerPortSpec>,
    ReadAndWrite<SControlSpec>,
    ReadAndWrite<SCurrentControlInfoSpec>,
    ReadAndWrite<SPortConnectDisconnectSpec>,
    ReadAndWrite<SKeysetIndexSpec>,
    ReadAndWrite<SBankIndexSpec>,
    ReadAndWrite<SLayerIndexSpec>,
    ReadAndWrite<STrackerArmSpec>,
    ReadAndWrite<SConnectStatusSpec>,
    ReadOnly<SResetSocketSpec>,
    ReadOnly<SIncommingLongArraySpec>,
    ReadAndWriteEnvelope,
    ReadAndWriteWindow,
    ReadAndWriteTargets,
    Truncate,
    Store,
    ReadElement,
};

}  // namespace

void fuzz::PrepareTarget() {}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > 0) {
        kRecords[*data % std::size(kRecords)]({data + 1, size - 1});
    }
    return 0;
}
