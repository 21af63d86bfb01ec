#include "VEKCommon/ByteBuffers.h"

#include <algorithm>

void UToBuffer::StoreByte(unsigned char value, unsigned char* dst) {
    *dst = value;
}

void UToBuffer::StoreShort(unsigned short value, unsigned char* dst) {
    dst[0] = static_cast<unsigned char>(value >> 8);
    dst[1] = static_cast<unsigned char>(value);
}

void UToBuffer::StoreLong(unsigned int value, unsigned char* dst) {
    for (unsigned int shift = 32; shift > 0; shift -= 8) {
        *dst++ = static_cast<unsigned char>(value >> (shift - 8));
    }
}

unsigned char* UToBuffer::StorePStrAsCStr(const unsigned char* pstr, unsigned char* dst) {
    unsigned char* end = std::copy_n(pstr + 1, *pstr, dst);
    *end = 0;
    return end;
}

unsigned int UToBuffer::StoreBytes(const unsigned char* src, unsigned int n, unsigned char* dst) {
    std::copy_n(src, n, dst);
    return n;
}

unsigned char UFromBuffer::GetByte(const unsigned char* src) {
    return *src;
}

unsigned short UFromBuffer::GetShort(const unsigned char* src) {
    const int assembled = src[0] << 8 | src[1];
    const int swapped = (assembled & 0xFF) << 8 | assembled >> 8;
    return static_cast<unsigned short>(swapped);
}

unsigned int UFromBuffer::GetLong(const unsigned char* src) {
    unsigned int value = 0;
    for (int i = 0; i < 4; ++i) {
        value = value << 8 | src[i];
    }
    return value;
}

unsigned int UFromBuffer::GetBytes(const unsigned char* src, unsigned char* dst, unsigned int n) {
    std::copy_n(src, n, dst);
    return n;
}
