#include "platform/UnifiedLogging/Tracer.h"

#include <fmt/format.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <ctime>
#include <mutex>

#include "platform/LocalSocket/SessionDirectory.h"
#include "platform/LocalSocket/Socket.h"
#include "platform/LocalSocket/SocketAddress.h"

namespace unified_logging {

namespace {

using std::chrono::nanoseconds;

constexpr nanoseconds kBetweenLooks = std::chrono::milliseconds(250);

// A clock that the kernel does not have to be asked for.
nanoseconds CoarseTime() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &time);
    return std::chrono::seconds(time.tv_sec) + nanoseconds(time.tv_nsec);
}

std::span<const std::uint8_t> BytesOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

class Tracer {
  public:
    bool Listens();
    void Send(std::string_view line);
    void UseClock(Clock clock);

  private:
    void Look();
    bool TellWhatWasLost();
    bool IsIdle();
    void Write(std::string_view line);
    void Forget();

    std::atomic<Clock> clock_ = CoarseTime;
    std::atomic<nanoseconds> nextLook_{nanoseconds::min()};
    std::atomic<bool> listens_ = false;

    std::mutex mutex_;
    local_socket::Descriptor socket_;
    local_socket::FrameWriter writer_;
    unsigned long lost_ = 0;
};

bool Tracer::Listens() {
    if (listens_.load(std::memory_order_relaxed)) {
        return true;
    }
    const nanoseconds now = clock_.load(std::memory_order_relaxed)();
    if (now < nextLook_.load(std::memory_order_relaxed)) {
        return false;
    }
    const int savedError = errno;
    const std::lock_guard lock(mutex_);
    nextLook_ = now + kBetweenLooks;
    Look();
    errno = savedError;
    return listens_;
}

// Usually nobody is there: one system call finds that out.
void Tracer::Look() {
    const std::string path =
        local_socket::SessionDirectoryPath() + "/" + local_socket::SocketFileName(kTracerName);
    if (listens_ || access(path.c_str(), F_OK) != 0) {
        return;
    }
    socket_ = local_socket::Connect(kTracerName);
    writer_ = {};
    lost_ = 0;
    listens_ = static_cast<bool>(socket_);
}

void Tracer::Send(std::string_view line) {
    const int savedError = errno;
    const std::lock_guard lock(mutex_);
    if (socket_) {
        if (!IsIdle() || !TellWhatWasLost()) {
            ++lost_;
        } else {
            Write(line);
        }
    }
    errno = savedError;
}

// What the kernel does not take at once waits in the writer; until it has gone, no more is added.
bool Tracer::IsIdle() {
    if (writer_.Queued() > 0 &&
        writer_.Flush(socket_.get()) == local_socket::FrameWriter::Status::closed) {
        Forget();
    }
    return socket_ && writer_.Queued() == 0;
}

bool Tracer::TellWhatWasLost() {
    if (lost_ > 0) {
        Write(fmt::format(R"({{"eventType":"lossEvent","processID":{},"lossCount":{}}})", getpid(),
                          lost_));
        lost_ = 0;
    }
    return socket_ && writer_.Queued() == 0;
}

void Tracer::Write(std::string_view line) {
    if (writer_.Write(socket_.get(), BytesOf(line)) == local_socket::FrameWriter::Status::closed) {
        Forget();
    }
}

void Tracer::Forget() {
    socket_.reset();
    listens_ = false;
}

void Tracer::UseClock(Clock clock) {
    const std::lock_guard lock(mutex_);
    clock_ = clock != nullptr ? clock : CoarseTime;
    nextLook_ = nanoseconds::min();
    Forget();
}

// Never destroyed: objects that are destroyed while the process ends may still have signposts.
Tracer& TheTracer() {
    static Tracer& tracer = *new Tracer;
    return tracer;
}

}  // namespace

bool TracerListens() {
    return TheTracer().Listens();
}

void SendToTracer(std::string_view line) {
    TheTracer().Send(line);
}

void UseClock(Clock clock) {
    TheTracer().UseClock(clock);
}

}  // namespace unified_logging
