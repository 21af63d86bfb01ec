// Values in byte buffers, most significant byte first: the order of the controller's status words.
// No operation knows the end of its buffer: the caller sizes it.
#pragma once

struct UToBuffer {
    static void StoreByte(unsigned char value, unsigned char* dst);
    static void StoreShort(unsigned short value, unsigned char* dst);
    static void StoreLong(unsigned int value, unsigned char* dst);

    // Writes the characters of a string whose first byte is its length, then a 0 byte; answers the
    // position of that 0 byte.
    static unsigned char* StorePStrAsCStr(const unsigned char* pstr, unsigned char* dst);

    static unsigned int StoreBytes(const unsigned char* src, unsigned int n, unsigned char* dst);
};

struct UFromBuffer {
    static unsigned char GetByte(const unsigned char* src);

    // Not the counterpart of StoreShort: the two bytes are swapped after they are put together, so
    // this one reads least significant byte first. The companion relies on it.
    static unsigned short GetShort(const unsigned char* src);

    static unsigned int GetLong(const unsigned char* src);
    static unsigned int GetBytes(const unsigned char* src, unsigned char* dst, unsigned int n);
};
