// Values in byte buffers, most significant byte first: the order of the controller's status words.
// No operation checks bounds: the caller sizes the buffers.
#pragma once

struct UToBuffer {
    static void StoreByte(unsigned char value, unsigned char* dst);
    static void StoreShort(unsigned short value, unsigned char* dst);
    static void StoreLong(unsigned int value, unsigned char* dst);

    // Copies the characters of a string whose first byte is its length and appends a 0 byte;
    // returns the position of that 0 byte.
    static unsigned char* StorePStrAsCStr(const unsigned char* pstr, unsigned char* dst);

    // Returns n.
    static unsigned int StoreBytes(const unsigned char* src, unsigned int n, unsigned char* dst);
};

struct UFromBuffer {
    static unsigned char GetByte(const unsigned char* src);

    // Deliberately not the inverse of StoreShort: the value is swapped after it is assembled, so
    // that the bytes are read least significant first.
    static unsigned short GetShort(const unsigned char* src);

    static unsigned int GetLong(const unsigned char* src);

    // Returns n.
    static unsigned int GetBytes(const unsigned char* src, unsigned char* dst, unsigned int n);
};
