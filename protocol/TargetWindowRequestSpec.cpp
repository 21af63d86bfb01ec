#include "protocol/TargetWindowRequestSpec.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

#include "protocol/Truncation.h"

namespace {

using Info = VEK_Driver_TargetWindowInfo;

constexpr std::size_t kNameBytes = sizeof(Info::windowName);  // terminator included
constexpr std::size_t kNameUnits = sizeof(Info::windowNameUnicode) / sizeof(UniChar);
constexpr std::size_t kSmallestInfo = 25;  // bytes: no name

// Bounded by the fixed size of the candidate's fields, whatever lengths it claims.
std::size_t NameLength(const char (&name)[kNameBytes]) {
    return strnlen(name, kNameBytes - 1);
}

unsigned int UnitCount(unsigned long long length) {
    return static_cast<unsigned int>(std::min<unsigned long long>(length, kNameUnits));
}

unsigned int SecondNameBytes(const Info& info) {
    return info.hasSubWindow ? static_cast<unsigned int>(NameLength(info.subWindowName) + 1) : 0;
}

unsigned int SerializeName(const char (&name)[kNameBytes], unsigned long long length,
                           const UniChar* units, unsigned char* dst) {
    const unsigned char* const start = dst;
    dst += SMessageSpec::SerializeStringField(std::string(name, NameLength(name)), dst);
    dst += SMessageSpec::SerializeField(UnitCount(length), dst);
    dst += SMessageSpec::SerializeStringField(units, UnitCount(length), dst);
    return static_cast<unsigned int>(dst - start);
}

unsigned int DeserializeName(const unsigned char* src, char* name, unsigned long long& length,
                             UniChar* units) {
    const unsigned char* const start = src;
    unsigned int count = 0;
    src += SMessageSpec::DeserializeStringField(src, name);
    src += SMessageSpec::DeserializeField(src, &count);
    src += SMessageSpec::DeserializeStringField(src, units, count);
    length = count;
    return static_cast<unsigned int>(src - start);
}

unsigned int SerializeInfo(const Info& info, unsigned char* dst) {
    const unsigned char* const start = dst;
    dst += SerializeName(info.windowName, info.windowNameLength, info.windowNameUnicode, dst);
    dst += SMessageSpec::SerializeField(TruncatedToBitPattern(info.firstValue), dst);
    dst += SMessageSpec::SerializeField(TruncatedToBitPattern(info.secondValue), dst);
    dst += SMessageSpec::SerializeField(info.kind, dst);
    dst += SMessageSpec::SerializeField(info.firstFlag ? 1 : 0, dst);
    dst += SMessageSpec::SerializeField(info.hasSubWindow ? 1 : 0, dst);
    if (info.hasSubWindow) {
        dst += SerializeName(info.subWindowName, info.subWindowNameLength,
                             info.subWindowNameUnicode, dst);
    }
    return static_cast<unsigned int>(dst - start);
}

unsigned int DeserializeInfo(const unsigned char* src, Info& info) {
    const unsigned char* const start = src;
    src += DeserializeName(src, info.windowName, info.windowNameLength, info.windowNameUnicode);
    unsigned int numbers[5] = {};
    for (unsigned int& number : numbers) {
        src += SMessageSpec::DeserializeField(src, &number);
    }
    info.firstValue = numbers[0];
    info.secondValue = numbers[1];
    info.kind = static_cast<UInt8>(numbers[2]);
    info.firstFlag = numbers[3] != 0;
    info.hasSubWindow = numbers[4] != 0;
    if (info.hasSubWindow) {
        src += DeserializeName(src, info.subWindowName, info.subWindowNameLength,
                               info.subWindowNameUnicode);
    }
    return static_cast<unsigned int>(src - start);
}

// Only one candidate at a time is in memory in its unpacked form.
template <class Visit>
void ForEachInfo(const unsigned char* src, Visit visit) {
    unsigned int count = 0;
    src += SMessageSpec::DeserializeField(src, &count);
    for (unsigned int i = 0; i < count; ++i) {
        Info info = {};
        src += DeserializeInfo(src, info);
        visit(info);
    }
}

bool SkipName(BoundedBytes& body) {
    const auto length = body.SkipString();
    if (!length || !body.Fits(*length, kNameBytes - 1, "bytes")) {
        return false;
    }
    const auto units = body.SkipInteger();
    if (!units || !body.HoldsItems(*units, sizeof(UniChar)) ||
        !body.Fits(*units, kNameUnits, "UTF-16 units")) {
        return false;
    }
    body.Skip(sizeof(UniChar) * *units);
    return true;
}

bool SkipInfo(BoundedBytes& body) {
    constexpr std::size_t numbersBeforeSecondName = 4 * sizeof(std::uint32_t);
    if (!SkipName(body) || !body.Skip(numbersBeforeSecondName)) {
        return false;
    }
    const auto hasSecondName = body.SkipInteger();
    return hasSecondName && (*hasSecondName == 0 || SkipName(body));
}

}  // namespace

STargetWindowRequestSpec::STargetWindowRequestSpec() : SMessageSpec(kSmallestSize) {}

STargetWindowRequestSpec::STargetWindowRequestSpec(const VEK_Driver_TargetWindowInfo* infos,
                                                   unsigned int count)
    : SMessageSpec(kSmallestSize), targets(infos, count) {
    serialSize = StoredSize();
}

std::optional<std::size_t> STargetWindowRequestSpec::CompleteSize(const unsigned char* bytes,
                                                                  std::size_t length) {
    return CompleteSizeOf<STargetWindowRequestSpec>(bytes, length);
}

bool STargetWindowRequestSpec::SkipOver(BoundedBytes& body) {
    const auto count = body.SkipInteger();
    if (!count || !body.HoldsItems(*count, kSmallestInfo)) {
        return false;
    }
    for (unsigned int i = 0; i < *count; ++i) {
        if (!SkipInfo(body)) {
            return false;
        }
    }
    return true;
}

unsigned int STargetWindowRequestSpec::CalcInfoFieldSize(const VEK_Driver_TargetWindowInfo& info) {
    constexpr unsigned int integers = 24;
    unsigned int size = static_cast<unsigned int>(NameLength(info.windowName) + 1) + integers +
                        2 * UnitCount(info.windowNameLength);
    if (info.hasSubWindow) {
        size += 4 + 2 * UnitCount(info.subWindowNameLength);
    }
    return size;
}

// The sums wrap around at 32 bits, as the size itself does.
unsigned int STargetWindowRequestSpec::StoredSize() const {
    unsigned int size = kSmallestSize;
    unsigned int sumSoFar = 0;
    for (const Info& info : targets) {
        sumSoFar += CalcInfoFieldSize(info);
        size += sumSoFar;
    }
    return size;
}

unsigned char* STargetWindowRequestSpec::Serialize() {
    std::size_t written = kSmallestSize;
    for (const Info& info : targets) {
        written += CalcInfoFieldSize(info) + SecondNameBytes(info);
    }
    buffer_.assign(std::max<std::size_t>(written, serialSize), 0);

    unsigned char* dst = buffer_.data();
    dst += SerializeField(static_cast<unsigned int>(targets.size()), dst);
    for (const Info& info : targets) {
        dst += SerializeInfo(info, dst);
    }
    return buffer_.data();
}

void STargetWindowRequestSpec::Deserialize(const unsigned char* src) {
    std::size_t size = 0;
    ForEachInfo(src, [&size](const Info& info) { size += TargetWindowList::PackedSize(info); });
    targets = TargetWindowList();
    targets.Reserve(size);
    ForEachInfo(src, [this](const Info& info) { targets.Append(info); });
    serialSize = StoredSize();
}

unsigned int STargetWindowRequestSpec::SerialBufferSize() {
    return serialSize;
}
