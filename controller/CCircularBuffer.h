// A ring of bytes between a producer and a consumer.
//
// The busy flag is an ordinary bool, neither atomic nor a lock: it only makes a call that is
// entered while another one works give up, doing nothing. Writing never fails: what does not fit
// overwrites bytes not yet read, and a writer that catches up with the reader exactly leaves an
// empty ring.
#pragma once

class CCircularBuffer {
  public:
    static constexpr unsigned long kCapacity = 32768;  // bytes; one fewer are readable at once

    CCircularBuffer();
    virtual ~CCircularBuffer();

    // Each of these answers 0 or false, and does nothing, while another call works.
    void AddBytes(const unsigned char* bytes, unsigned long n);
    void AddByte(unsigned char byte);
    unsigned long GetBytes(unsigned char* out, unsigned long n);  // bytes read
    bool GetByte(unsigned char* out);
    unsigned long MoveOutMarkBy(unsigned long n);  // bytes skipped

    // Neither of these looks at the busy flag.
    unsigned long BytesRemaining() const;  // written and not yet read
    bool IsEmpty() const;

    // Stores the marks unchecked, whether or not another call works.
    void Reset(unsigned long in, unsigned long out);

    // Byte by byte, first to last, with a 32-bit counter: of 2^32 bytes or more, the count's low 32
    // bits are copied.
    void CopyBytes(const unsigned char* from, unsigned char* to, unsigned long n);

  private:
    friend struct CircularBufferInspector;  // the tests' view of the fields

    unsigned char data_[kCapacity];  // not cleared at construction
    unsigned long inMark_ = 0;       // next byte to write
    unsigned long outMark_ = 0;      // next byte to read
    bool busy_ = false;
    [[maybe_unused]] unsigned int spareWord_ = 0;
};
