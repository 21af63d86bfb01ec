#include "protocol/MessageSpec.h"

#include <algorithm>
#include <cstring>

SMessageSpec::~SMessageSpec() = default;

unsigned int SMessageSpec::SerialBufferSize() {
    return serialSize;
}

unsigned int SMessageSpec::SerializeField(unsigned int value, unsigned char* dst) {
    for (unsigned int shift = 0; shift < 32; shift += 8) {
        *dst++ = static_cast<unsigned char>(value >> shift);
    }
    return 4;
}

unsigned int SMessageSpec::DeserializeField(const unsigned char* src, unsigned int* value) {
    *value = 0;
    for (unsigned int shift = 0; shift < 32; shift += 8) {
        *value |= static_cast<unsigned int>(*src++) << shift;
    }
    return 4;
}

unsigned int SMessageSpec::SerializeStringField(const std::string& s, unsigned char* dst) {
    std::copy_n(s.c_str(), s.length() + 1, dst);
    return static_cast<unsigned int>(s.length() + 1);
}

unsigned int SMessageSpec::DeserializeStringField(const unsigned char* src, std::string& s) {
    s = reinterpret_cast<const char*>(src);
    return static_cast<unsigned int>(s.length() + 1);
}

unsigned int SMessageSpec::SerializeStringField(const char* s, unsigned char* dst) {
    const std::size_t size = std::strlen(s) + 1;
    std::copy_n(s, size, dst);
    return static_cast<unsigned int>(size);
}

unsigned int SMessageSpec::DeserializeStringField(const unsigned char* src, char* s) {
    const std::size_t size = std::strlen(reinterpret_cast<const char*>(src)) + 1;
    std::copy_n(src, size, s);
    return static_cast<unsigned int>(size);
}

unsigned int SMessageSpec::SerializeStringField(const unsigned short* chars, unsigned int count,
                                                unsigned char* dst) {
    for (unsigned int i = 0; i < count; ++i) {
        *dst++ = static_cast<unsigned char>(chars[i]);
        *dst++ = static_cast<unsigned char>(chars[i] >> 8);
    }
    return 2 * count;
}

unsigned int SMessageSpec::DeserializeStringField(const unsigned char* src, unsigned short* chars,
                                                  unsigned int count) {
    for (unsigned int i = 0; i < count; ++i, src += 2) {
        chars[i] = static_cast<unsigned short>(src[0] | src[1] << 8);
    }
    return 2 * count;
}
