#include "protocol/SharedFamilyRecords.h"

#include <cstring>

#include "protocol/BoundedBytes.h"

unsigned char* SServerPortSpec::Serialize() {
    return SerializeFields(fields[0], fields[1]);
}

void SServerPortSpec::Deserialize(const unsigned char* src) {
    DeserializeFields(src, fields[0], fields[1]);
}

unsigned char* SControlSpec::Serialize() {
    return SerializeFields(fields[0], fields[1], fields[2], fields[3]);
}

void SControlSpec::Deserialize(const unsigned char* src) {
    DeserializeFields(src, fields[0], fields[1], fields[2], fields[3]);
}

unsigned char* SCurrentControlInfoSpec::Serialize() {
    return SerializeFields(fields[0], fields[1], fields[2], fields[3]);
}

void SCurrentControlInfoSpec::Deserialize(const unsigned char* src) {
    DeserializeFields(src, fields[0], fields[1], fields[2], fields[3]);
}

unsigned char* SPortConnectDisconnectSpec::Serialize() {
    return SerializeFields(field);
}

void SPortConnectDisconnectSpec::Deserialize(const unsigned char* src) {
    DeserializeFields(src, field);
}

unsigned char* SKeysetIndexSpec::Serialize() {
    return SerializeFields(keysetIndex);
}

void SKeysetIndexSpec::Deserialize(const unsigned char* src) {
    DeserializeFields(src, keysetIndex);
}

unsigned char* SBankIndexSpec::Serialize() {
    return SerializeFields(bankIndex);
}

void SBankIndexSpec::Deserialize(const unsigned char* src) {
    DeserializeFields(src, bankIndex);
}

unsigned char* SLayerIndexSpec::Serialize() {
    return SerializeFields(layerIndex);
}

void SLayerIndexSpec::Deserialize(const unsigned char* src) {
    DeserializeFields(src, layerIndex);
}

unsigned char* STrackerArmSpec::Serialize() {
    return SerializeFields(fields[0], fields[1], fields[2]);
}

void STrackerArmSpec::Deserialize(const unsigned char* src) {
    DeserializeFields(src, fields[0], fields[1], fields[2]);
}

std::optional<std::size_t> SConnectStatusSpec::CompleteSize(const unsigned char* bytes,
                                                            std::size_t length) {
    return BoundedBytes(bytes, length).Skip(kSmallestSize)
               ? std::optional<std::size_t>(kSmallestSize)
               : std::nullopt;
}

unsigned char* SConnectStatusSpec::Serialize() {
    bytes_[SerializeField(status, bytes_)] = byte;
    return bytes_;
}

void SConnectStatusSpec::Deserialize(const unsigned char* src) {
    src += DeserializeField(src, &status);
    byte = *src;
}

std::optional<std::size_t> SResetSocketSpec::CompleteSize(const unsigned char* bytes,
                                                          std::size_t length) {
    BoundedBytes body(bytes, length);
    const auto textLength = body.SkipString();
    if (!textLength || *textLength > kLongestText || !body.SkipInteger()) {
        return std::nullopt;
    }
    return length - body.Left();
}

unsigned char* SResetSocketSpec::Serialize() {
    return nullptr;
}

void SResetSocketSpec::Deserialize(const unsigned char* src) {
    src += DeserializeStringField(src, text);
    DeserializeField(src, &field);
}

std::optional<std::size_t> SIncommingLongArraySpec::CompleteSize(const unsigned char* bytes,
                                                                 std::size_t length) {
    BoundedBytes body(bytes, length);
    const auto n = body.SkipInteger();
    if (!n || !body.SkipInteger() || !body.Skip(std::size_t{4} * *n)) {
        return std::nullopt;
    }
    return length - body.Left();
}

unsigned char* SIncommingLongArraySpec::Serialize() {
    return nullptr;
}

void SIncommingLongArraySpec::Deserialize(const unsigned char* src) {
    src += DeserializeField(src, &count);
    src += DeserializeField(src, &field);
    elements = std::make_unique<unsigned int[]>(count);
    if (count > 0) {
        std::memcpy(elements.get(), src, std::size_t{4} * count);
    }
}
