// A ring of bytes between a producer and a consumer. The driver creates no instance of it.
//
// The busy flag is a plain bool, neither atomic nor a lock: a call that is entered while another
// one is in progress returns at once, having done nothing. Writing never fails: what does not fit
// overwrites bytes not yet read, and a writer that catches up with the reader exactly leaves an
// empty ring.
#pragma once

class CCircularBuffer {
  public:
    static constexpr unsigned long kCapacity = 32768;  // bytes; one fewer are readable at once

    CCircularBuffer();
    virtual ~CCircularBuffer();

    // While another call is in progress, each of these does nothing and returns 0 or false.
    void AddBytes(const unsigned char* bytes, unsigned long n);
    void AddByte(unsigned char byte);
    unsigned long GetBytes(unsigned char* out, unsigned long n);  // bytes read
    bool GetByte(unsigned char* out);
    unsigned long MoveOutMarkBy(unsigned long n);  // bytes skipped

    // These two ignore the busy flag.
    unsigned long BytesRemaining() const;  // written and not yet read
    bool IsEmpty() const;

    // Stores the marks unchecked, whether or not another call is in progress.
    void Reset(unsigned long in, unsigned long out);

    // Copies byte by byte, first to last, with a 32-bit counter: only the low 32 bits of `n` are
    // used.
    void CopyBytes(const unsigned char* from, unsigned char* to, unsigned long n);

  private:
    friend struct CircularBufferInspector;  // the tests' view of the fields

    unsigned char data_[kCapacity];  // not cleared at construction
    unsigned long inMark_ = 0;       // next byte to write
    unsigned long outMark_ = 0;      // next byte to read
    bool busy_ = false;
    [[maybe_unused]] unsigned int spareWord_ = 0;
};
