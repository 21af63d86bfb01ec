#include "platform/DesktopLink/Connection.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <utility>

namespace desktop_link {

using std::chrono::duration;
using std::chrono::duration_cast;
using std::chrono::nanoseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

Deadline DeadlineAfter(double timeout) {
    constexpr double kLongest = 24 * 60 * 60;
    const double bounded = timeout > 0 ? std::min(timeout, kLongest) : 0;
    return steady_clock::now() + duration_cast<steady_clock::duration>(duration<double>(bounded));
}

Connection::Connection(local_socket::Descriptor socket)
    : socket_(std::move(socket)), reader_(kLargestPayload) {}

std::optional<Connection> Connection::Open(std::string_view name) {
    local_socket::Descriptor socket = local_socket::Connect(name);
    if (!socket) {
        return std::nullopt;
    }
    return Connection(std::move(socket));
}

Connection::Outcome Connection::Send(std::span<const std::uint8_t> head,
                                     std::span<const std::uint8_t> rest, Deadline deadline) {
    using Status = local_socket::FrameWriter::Status;
    auto finish = [&](Status status) {
        while (status == Status::pending) {
            if (!WaitFor(POLLOUT, deadline)) {
                return Outcome::late;
            }
            status = writer_.Flush(socket_.get());
        }
        return status == Status::done ? Outcome::done : Outcome::closed;
    };

    if (writer_.Queued() > 0) {
        const Outcome earlier = finish(writer_.Flush(socket_.get()));
        if (earlier != Outcome::done) {
            return earlier;
        }
    }
    return finish(writer_.Write(socket_.get(), head, rest));
}

Connection::Outcome Connection::Read() {
    return reader_.ReadFrom(socket_.get()) == local_socket::FrameReader::Status::open
               ? Outcome::done
               : Outcome::closed;
}

Connection::Outcome Connection::WaitAndRead(Deadline deadline) {
    return WaitFor(POLLIN, deadline) ? Read() : Outcome::late;
}

// On the descriptor only: as on macOS, a call to another application does not run the run loop.
bool Connection::WaitFor(short events, Deadline deadline) const {
    pollfd entry{socket_.get(), events, 0};
    for (;;) {
        const nanoseconds left =
            std::max(duration_cast<nanoseconds>(deadline - steady_clock::now()), nanoseconds(0));
        const auto wholeSeconds = duration_cast<seconds>(left);
        const timespec timeout{wholeSeconds.count(), (left - wholeSeconds).count()};
        const int ready = ppoll(&entry, 1, &timeout, nullptr);
        if (ready > 0) {
            return true;
        }
        if (ready == 0 || errno != EINTR) {
            return false;
        }
    }
}

}  // namespace desktop_link
