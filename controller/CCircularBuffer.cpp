#include "controller/CCircularBuffer.h"

#include <algorithm>

namespace {

// Reset() takes any marks, even outside the ring; the positions used are always inside.
unsigned long InsideRing(unsigned long mark) {
    return mark % CCircularBuffer::kCapacity;
}

// Holds the busy flag during one operation, unless another one holds it already.
class Turn {
  public:
    explicit Turn(bool& busy) : busy_(busy), taken_(!busy) { busy_ = true; }
    ~Turn() {
        if (taken_) {
            busy_ = false;
        }
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    explicit operator bool() const { return taken_; }

  private:
    bool& busy_;
    bool taken_;
};

}  // namespace

// The bytes themselves are not cleared: none is readable before it is written.
CCircularBuffer::CCircularBuffer() = default;

CCircularBuffer::~CCircularBuffer() = default;

void CCircularBuffer::AddBytes(const unsigned char* bytes, unsigned long n) {
    const Turn turn(busy_);
    if (!turn) {
        return;
    }
    while (n > 0) {
        const unsigned long start = InsideRing(inMark_);
        const unsigned long count = std::min(n, kCapacity - start);
        std::copy_n(bytes, count, data_ + start);
        bytes += count;
        n -= count;
        inMark_ = InsideRing(start + count);
    }
}

void CCircularBuffer::AddByte(unsigned char byte) {
    const Turn turn(busy_);
    if (!turn) {
        return;
    }
    const unsigned long start = InsideRing(inMark_);
    data_[start] = byte;
    inMark_ = InsideRing(start + 1);
}

unsigned long CCircularBuffer::GetBytes(unsigned char* out, unsigned long n) {
    const Turn turn(busy_);
    if (!turn) {
        return 0;
    }
    const unsigned long total = std::min(n, BytesRemaining());
    for (unsigned long left = total; left > 0;) {
        const unsigned long start = InsideRing(outMark_);
        const unsigned long count = std::min(left, kCapacity - start);
        out = std::copy_n(data_ + start, count, out);
        left -= count;
        outMark_ = InsideRing(start + count);
    }
    return total;
}

bool CCircularBuffer::GetByte(unsigned char* out) {
    const Turn turn(busy_);
    if (!turn || IsEmpty()) {
        return false;
    }
    const unsigned long start = InsideRing(outMark_);
    *out = data_[start];
    outMark_ = InsideRing(start + 1);
    return true;
}

unsigned long CCircularBuffer::MoveOutMarkBy(unsigned long n) {
    const Turn turn(busy_);
    if (!turn) {
        return 0;
    }
    const unsigned long count = std::min(n, BytesRemaining());
    outMark_ += count;
    if (outMark_ >= kCapacity) {
        outMark_ -= kCapacity;
    }
    return count;
}

unsigned long CCircularBuffer::BytesRemaining() const {
    return inMark_ >= outMark_ ? inMark_ - outMark_ : kCapacity - outMark_ + inMark_;
}

bool CCircularBuffer::IsEmpty() const {
    return inMark_ == outMark_;
}

void CCircularBuffer::Reset(unsigned long in, unsigned long out) {
    busy_ = true;
    inMark_ = in;
    outMark_ = out;
    busy_ = false;
}

void CCircularBuffer::CopyBytes(const unsigned char* from, unsigned char* to, unsigned long n) {
    for (auto left = static_cast<unsigned int>(n); left > 0; --left) {
        *to++ = *from++;
    }
}
