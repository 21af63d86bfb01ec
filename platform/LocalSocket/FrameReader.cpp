#include <sys/uio.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include "platform/LocalSocket/Frames.h"
#include "platform/LocalSocket/LittleEndian.h"

namespace local_socket {
namespace {

constexpr std::size_t kLengthSize = 4;
constexpr std::size_t kSmallestCapacity = 1024;
constexpr std::size_t kLargestKeptCapacity = std::size_t{64} * 1024;
constexpr std::size_t kSpillSize = std::size_t{64} * 1024;

}  // namespace

FrameReader::Status FrameReader::ReadFrom(int descriptor) {
    MakeRoom();
    // What does not fit into the available memory goes to the spill, so that one read is enough for
    // most frames although little memory is held for a peer that sends little.
    std::array<std::uint8_t, kSpillSize> spill;
    const std::size_t room = capacity_ - end_;
    iovec parts[] = {{memory_.get() + end_, room}, {spill.data(), spill.size()}};
    ssize_t count = 0;
    do {
        count = readv(descriptor, parts, 2);
    } while (count < 0 && errno == EINTR);
    if (count < 0) {
        return errno == EAGAIN ? Status::open : Status::closed;
    }
    if (count == 0) {
        return Status::closed;
    }
    const std::size_t came = static_cast<std::size_t>(count);
    end_ += std::min(came, room);
    if (came > room) {
        Append(spill.data(), came - room);
    }
    return FindWholeFrames();
}

std::optional<std::span<const std::uint8_t>> FrameReader::Next() {
    if (!HasFrame()) {
        return std::nullopt;
    }
    const std::uint8_t* frame = memory_.get() + begin_;
    const std::size_t length = LoadLittleEndian(frame);
    begin_ += kLengthSize + length;
    return std::span(frame + kLengthSize, length);
}

std::optional<OwnedPayload> FrameReader::Take() {
    const auto payload = Next();
    if (!payload) {
        return std::nullopt;
    }
    if (begin_ == end_) {
        begin_ = whole_ = end_ = capacity_ = 0;
        return OwnedPayload{std::move(memory_), *payload};
    }
    auto copy = std::make_unique_for_overwrite<std::uint8_t[]>(payload->size());
    std::copy(payload->begin(), payload->end(), copy.get());
    const std::span<const std::uint8_t> bytes(copy.get(), payload->size());
    return OwnedPayload{std::move(copy), bytes};
}

void FrameReader::MakeRoom() {
    if (begin_ == end_ && capacity_ > kLargestKeptCapacity) {
        memory_.reset();
        begin_ = whole_ = end_ = capacity_ = 0;
    }
    if (begin_ > 0) {
        std::memmove(memory_.get(), memory_.get() + begin_, end_ - begin_);
        whole_ -= begin_;
        end_ -= begin_;
        begin_ = 0;
    }
    if (capacity_ == 0) {
        memory_ = std::make_unique_for_overwrite<std::uint8_t[]>(kSmallestCapacity);
        capacity_ = kSmallestCapacity;
    }
}

void FrameReader::Append(const std::uint8_t* bytes, std::size_t count) {
    capacity_ = std::max(2 * capacity_, end_ + count);
    auto larger = std::make_unique_for_overwrite<std::uint8_t[]>(capacity_);
    std::memcpy(larger.get(), memory_.get(), end_);
    std::memcpy(larger.get() + end_, bytes, count);
    memory_ = std::move(larger);
    end_ += count;
}

FrameReader::Status FrameReader::FindWholeFrames() {
    while (end_ - whole_ >= kLengthSize) {
        const std::size_t length = LoadLittleEndian(memory_.get() + whole_);
        if (length > largestPayload_) {
            return Status::oversized;
        }
        if (end_ - whole_ - kLengthSize < length) {
            break;
        }
        whole_ += kLengthSize + length;
    }
    return Status::open;
}

}  // namespace local_socket
