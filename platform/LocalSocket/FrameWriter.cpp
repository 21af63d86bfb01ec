#include <sys/socket.h>
#include <sys/uio.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <limits>

#include "platform/LocalSocket/Frames.h"
#include "platform/LocalSocket/LittleEndian.h"

namespace local_socket {
namespace {

constexpr std::size_t kLargestKeptCapacity = std::size_t{64} * 1024;

// The number of bytes sent: 0 when none can be sent without blocking, negative when the peer is
// gone.
ssize_t Send(int descriptor, iovec* parts, std::size_t partCount) {
    msghdr message{};
    message.msg_iov = parts;
    message.msg_iovlen = partCount;
    ssize_t count = 0;
    do {
        count = sendmsg(descriptor, &message, MSG_NOSIGNAL | MSG_DONTWAIT);
    } while (count < 0 && errno == EINTR);
    // A temporary shortage of kernel memory is not a reason to drop the peer.
    if (count < 0 && (errno == EAGAIN || errno == ENOBUFS)) {
        return 0;
    }
    return count;
}

}  // namespace

FrameWriter::Status FrameWriter::Write(int descriptor, std::span<const std::uint8_t> head,
                                       std::span<const std::uint8_t> rest) {
    const std::size_t length = head.size() + rest.size();
    if (length > std::numeric_limits<std::uint32_t>::max()) {
        return Status::closed;
    }
    std::uint8_t prefix[4];
    StoreLittleEndian(static_cast<std::uint32_t>(length), prefix);
    const std::span<const std::uint8_t> parts[] = {prefix, head, rest};

    std::size_t sent = 0;
    if (Queued() == 0) {
        iovec vectors[3];
        for (std::size_t i = 0; i < 3; ++i) {
            vectors[i] = {const_cast<std::uint8_t*>(parts[i].data()), parts[i].size()};
        }
        const ssize_t count = Send(descriptor, vectors, 3);
        if (count < 0) {
            return Status::closed;
        }
        begun_ = count > 0;
        sent = static_cast<std::size_t>(count);
        if (sent == sizeof prefix + length) {
            return Status::done;
        }
    }
    if (sent_ > Queued()) {
        buffer_.erase(buffer_.begin(), buffer_.begin() + static_cast<std::ptrdiff_t>(sent_));
        sent_ = 0;
    }
    for (const auto& part : parts) {
        const std::size_t skipped = std::min(sent, part.size());
        sent -= skipped;
        buffer_.insert(buffer_.end(), part.begin() + static_cast<std::ptrdiff_t>(skipped),
                       part.end());
    }
    return Flush(descriptor);
}

FrameWriter::Status FrameWriter::Flush(int descriptor) {
    while (Queued() > 0) {
        iovec rest{buffer_.data() + sent_, Queued()};
        const ssize_t count = Send(descriptor, &rest, 1);
        if (count < 0) {
            return Status::closed;
        }
        if (count == 0) {
            return Status::pending;
        }
        begun_ = true;
        sent_ += static_cast<std::size_t>(count);
    }
    buffer_.clear();
    sent_ = 0;
    if (buffer_.capacity() > kLargestKeptCapacity) {
        buffer_.shrink_to_fit();
    }
    return Status::done;
}

bool FrameWriter::TakeBack() {
    if (begun_) {
        return false;
    }
    buffer_.clear();
    sent_ = 0;
    return true;
}

}  // namespace local_socket
