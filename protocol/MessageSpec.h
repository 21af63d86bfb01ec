// The base of every message record and the forms its fields take on the wire.
//
// A record holds its values as members, writes them with Serialize() into bytes that it owns, and
// reads them back with Deserialize(). Deserialize() takes no length, so it may be given only bytes
// that are known to hold a complete record. Every record has a static CompleteSize(bytes, length),
// which returns how many of the given bytes one complete record takes, or nothing when they do not
// hold one. Records that come as requests have a static SkipOver(body), too, which tells why.
#pragma once

#include <string>

class SMessageSpec {
  public:
    // The order of the virtual operations is the same in the whole record family.
    virtual ~SMessageSpec();

    // The record's own bytes, SerialBufferSize() of them, valid until it changes or is destroyed.
    // Null from a record that is only read.
    virtual unsigned char* Serialize() = 0;

    virtual void Deserialize(const unsigned char* src) = 0;

    virtual unsigned int SerialBufferSize();  // bytes

    // Each writer returns the number of bytes written and each reader the number consumed. None
    // checks bounds: the caller sizes the buffers.

    // 4 bytes, least significant first.
    static unsigned int SerializeField(unsigned int value, unsigned char* dst);
    static unsigned int DeserializeField(const unsigned char* src, unsigned int* value);

    // The string's bytes and one 0 byte. Reading stops after the first 0 byte.
    static unsigned int SerializeStringField(const std::string& s, unsigned char* dst);
    static unsigned int DeserializeStringField(const unsigned char* src, std::string& s);
    static unsigned int SerializeStringField(const char* s, unsigned char* dst);
    static unsigned int DeserializeStringField(const unsigned char* src, char* s);

    // `count` UTF-16 units, low byte first; neither terminator nor length travels with them.
    static unsigned int SerializeStringField(const unsigned short* chars, unsigned int count,
                                             unsigned char* dst);
    static unsigned int DeserializeStringField(const unsigned char* src, unsigned short* chars,
                                               unsigned int count);

  protected:
    explicit SMessageSpec(unsigned int size) : serialSize(size) {}
    SMessageSpec(const SMessageSpec&) = default;
    SMessageSpec(SMessageSpec&&) = default;
    SMessageSpec& operator=(const SMessageSpec&) = default;
    SMessageSpec& operator=(SMessageSpec&&) = default;

    unsigned int serialSize;  // bytes that Serialize() produces; every record sets it
};
