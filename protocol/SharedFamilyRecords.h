// Records of the shared family that the driver neither sends nor reads; their formats are part of
// the family all the same.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>

#include "protocol/IntegerFieldsSpec.h"

struct SServerPortSpec : SIntegerFieldsSpec<2> {
    unsigned char* Serialize() override;
    void Deserialize(const unsigned char* src) override;

    unsigned int fields[2] = {};
};

struct SControlSpec : SIntegerFieldsSpec<4> {
    unsigned char* Serialize() override;
    void Deserialize(const unsigned char* src) override;

    unsigned int fields[4] = {};
};

struct SCurrentControlInfoSpec : SIntegerFieldsSpec<4> {
    unsigned char* Serialize() override;
    void Deserialize(const unsigned char* src) override;

    unsigned int fields[4] = {};
};

struct SPortConnectDisconnectSpec : SIntegerFieldsSpec<1> {
    unsigned char* Serialize() override;
    void Deserialize(const unsigned char* src) override;

    unsigned int field = 0;
};

struct SKeysetIndexSpec : SIntegerFieldsSpec<1> {
    unsigned char* Serialize() override;
    void Deserialize(const unsigned char* src) override;

    unsigned int keysetIndex = 0;
};

struct SBankIndexSpec : SIntegerFieldsSpec<1> {
    unsigned char* Serialize() override;
    void Deserialize(const unsigned char* src) override;

    unsigned int bankIndex = 0;
};

struct SLayerIndexSpec : SIntegerFieldsSpec<1> {
    unsigned char* Serialize() override;
    void Deserialize(const unsigned char* src) override;

    unsigned int layerIndex = 0;
};

struct STrackerArmSpec : SIntegerFieldsSpec<3> {
    unsigned char* Serialize() override;
    void Deserialize(const unsigned char* src) override;

    unsigned int fields[3] = {};
};

struct SConnectStatusSpec : SMessageSpec {
    static constexpr unsigned int kSmallestSize = 5;  // bytes

    SConnectStatusSpec() : SMessageSpec(kSmallestSize) {}
    static std::optional<std::size_t> CompleteSize(const unsigned char* bytes, std::size_t length);
    unsigned char* Serialize() override;
    void Deserialize(const unsigned char* src) override;

    unsigned int status = 0;
    unsigned char byte = 0;

  private:
    unsigned char bytes_[kSmallestSize] = {};
};

// Only read: Serialize() returns null and the serial size is 0.
struct SResetSocketSpec : SMessageSpec {
    static constexpr unsigned int kSmallestSize = 5;  // bytes: empty text and the number
    static constexpr std::size_t kLongestText = 255;  // bytes before the terminator

    SResetSocketSpec() : SMessageSpec(0) {}

    // Nothing, too, for a text that does not fit `text`.
    static std::optional<std::size_t> CompleteSize(const unsigned char* bytes, std::size_t length);
    unsigned char* Serialize() override;
    void Deserialize(const unsigned char* src) override;

    char text[kLongestText + 1] = {};
    unsigned int field = 0;
};

// Only read: Serialize() returns null and the serial size is 0.
struct SIncommingLongArraySpec : SMessageSpec {
    static constexpr unsigned int kSmallestSize = 8;  // bytes: no element

    SIncommingLongArraySpec() : SMessageSpec(0) {}
    static std::optional<std::size_t> CompleteSize(const unsigned char* bytes, std::size_t length);
    unsigned char* Serialize() override;
    void Deserialize(const unsigned char* src) override;

    unsigned int count = 0;
    unsigned int field = 0;
    std::unique_ptr<unsigned int[]> elements;  // count of them, in host order on the wire
};
