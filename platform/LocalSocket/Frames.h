// Frames over a stream socket: a 4-byte little-endian length of the payload, then the payload.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace local_socket {

// A payload together with its memory.
struct OwnedPayload {
    std::unique_ptr<std::uint8_t[]> memory;
    std::span<const std::uint8_t> bytes;
};

// Collects bytes of one peer into frames.
class FrameReader {
  public:
    explicit FrameReader(std::size_t largestPayload) : largestPayload_(largestPayload) {}

    enum class Status { open, closed, oversized };

    // One read of what is available, without blocking; what it leaves behind keeps the descriptor
    // ready. Memory grows with the bytes received, never with the announced length. The frames
    // before the peer's end, and those before an oversized one, are still returned by Next() and
    // Take().
    Status ReadFrom(int descriptor);

    // A whole payload is waiting.
    bool HasFrame() const { return begin_ < whole_; }

    // The next whole payload; valid until the next call of any member.
    std::optional<std::span<const std::uint8_t>> Next();

    // The next whole payload in separate memory. Nothing is copied when it was received alone.
    std::optional<OwnedPayload> Take();

    // Bytes that were received and not returned yet.
    std::size_t Buffered() const { return end_ - begin_; }

  private:
    void MakeRoom();
    void Append(const std::uint8_t* bytes, std::size_t count);
    Status FindWholeFrames();

    std::size_t largestPayload_;
    std::unique_ptr<std::uint8_t[]> memory_;
    std::size_t capacity_ = 0;
    std::size_t begin_ = 0;  // first byte of the next frame
    std::size_t whole_ = 0;  // end of the last whole frame
    std::size_t end_ = 0;    // end of the bytes received
};

// Bytes on their way to one peer. A peer that went away never raises SIGPIPE.
class FrameWriter {
  public:
    enum class Status { done, pending, closed };

    // Queues a frame whose payload is `head` and then `rest`, and sends what can be sent without
    // blocking, in one system call when nothing was queued before. The queue itself has no limit:
    // its owner checks Queued(). A payload longer than 32 bits can express counts as closed.
    Status Write(int descriptor, std::span<const std::uint8_t> head,
                 std::span<const std::uint8_t> rest = {});
    // Continues to send what is queued.
    Status Flush(int descriptor);
    std::size_t Queued() const { return buffer_.size() - sent_; }

    // Discards the one frame that is queued, and returns true, unless a part of it has been sent:
    // the peer must then get the rest.
    bool TakeBack();

  private:
    std::vector<std::uint8_t> buffer_;
    std::size_t sent_ = 0;
    bool begun_ = false;  // a part of what is queued has been sent
};

}  // namespace local_socket
