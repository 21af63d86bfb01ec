#include "platform/CoreFoundation/MessagePort/RemotePort.h"

#include <sys/epoll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/CoreFoundation/MessagePort/MessageData.h"
#include "platform/CoreFoundation/MessagePort/PortTable.h"
#include "platform/CoreFoundation/RunLoop/RunLoopPoller.h"
#include "platform/CoreFoundation/Runtime/Owned.h"

namespace message_port {
namespace {

using Status = local_socket::FrameWriter::Status;
using Table = PortTable<RemotePort>;

// Seconds. A send time-out shorter than the first does not wait at all; one from the second on
// waits without a limit.
constexpr CFTimeInterval kShortestWait = 0.001;
constexpr CFTimeInterval kNoLimit = 10.0 * 24 * 60 * 60;

run_loop::Instant SendDeadline(CFTimeInterval timeout) {
    const run_loop::Instant now = run_loop::Now();
    if (timeout >= kNoLimit) {
        return run_loop::kNever;
    }
    return timeout >= kShortestWait ? run_loop::Later(now, run_loop::Nanoseconds(timeout)) : now;
}

}  // namespace

struct RemotePort::Awaited {
    // Registered with the port during its lifetime.
    explicit Awaited(RemotePort& remotePort) : port(remotePort) {
        const std::lock_guard lock(port.mutex_);
        sequence = ++port.lastSequence_;
        port.awaited_.push_back(this);
    }
    Awaited(const Awaited&) = delete;
    Awaited& operator=(const Awaited&) = delete;
    ~Awaited() {
        const std::lock_guard lock(port.mutex_);
        std::erase(port.awaited_, this);
    }

    RemotePort& port;
    run_loop::RunLoop& loop = run_loop::RunLoop::Current();
    std::uint32_t sequence = 0;
    core_foundation::Owned<CFDataRef> reply;  // guarded by the port's mutex
};

Retained<RemotePort> RemotePort::FindOrConnect(const std::string& name) {
    if (auto port = Table::Instance().Find(name); port && port->IsValid()) {
        return port;
    }
    std::string problem;
    local_socket::Descriptor descriptor = local_socket::Connect(name, &problem);
    if (!descriptor) {
        if (!problem.empty()) {
            LogProblem(name, problem);
        }
        return {};
    }
    auto port = Retained<RemotePort>::Adopt(new RemotePort(name, std::move(descriptor)));
    Table::Instance().Enter(name, port.get());
    return port;
}

RemotePort::RemotePort(std::string name, local_socket::Descriptor descriptor)
    : Port(std::move(name)),
      descriptor_(std::move(descriptor)),
      reader_(kHeaderSize + kLargestData),
      source_(CreateDescriptorSource(0, run_loop::Presence::unnoticed)) {
    run_loop::Watch(source_, descriptor_.get(), EPOLLIN);
    CFRunLoopAddSource(CFRunLoopGetCurrent(), source_, kCFRunLoopCommonModes);
}

RemotePort::~RemotePort() {
    CFRelease(source_);
}

void RemotePort::End() {
    Table::Instance().Remove(RegisteredName(), this);
    const std::lock_guard lock(mutex_);
    run_loop::Unwatch(source_, descriptor_.get());
    CFRunLoopSourceInvalidate(source_);
    descriptor_.reset();
    // Wakes threads that wait for a reply which will not come.
    for (const Awaited* awaited : awaited_) {
        awaited->loop.WakeUp();
    }
}

bool RemotePort::IsValid() {
    bool peerIsGone = false;
    {
        const std::lock_guard lock(mutex_);
        char byte = 0;
        const ssize_t count =
            descriptor_ ? recv(descriptor_.get(), &byte, 1, MSG_PEEK | MSG_DONTWAIT) : 0;
        peerIsGone = count == 0 || (count < 0 && errno != EAGAIN);
    }
    if (peerIsGone) {
        Invalidate();
    }
    return StillValid();
}

SInt32 RemotePort::Send(std::int32_t msgid, std::span<const std::uint8_t> data,
                        CFTimeInterval timeout) {
    const Retained<RemotePort> alive(this);
    const run_loop::Instant deadline = SendDeadline(timeout);
    const SInt32 result = Queue({MessageHeader::Kind::request, false, msgid, 0}, data, deadline);
    // The sender may never run its loop, so the rest is sent here.
    SendProgress progress = SendProgress::begun;
    while (result == kCFMessagePortSuccess && progress == SendProgress::begun && HasUnsent() &&
           run_loop::WaitUntilWritable(descriptor_.get(), deadline)) {
        progress = Continue();
    }
    if (progress == SendProgress::failed) {
        Invalidate();
        return kCFMessagePortTransportError;
    }
    return result;
}

SInt32 RemotePort::Exchange(std::int32_t msgid, std::span<const std::uint8_t> data,
                            CFTimeInterval sendTimeout, CFTimeInterval receiveTimeout,
                            CFRunLoopMode replyMode, CFDataRef* reply) {
    const Retained<RemotePort> alive(this);
    Awaited awaited(*this);
    const run_loop::Instant sendDeadline = SendDeadline(sendTimeout);
    const SInt32 queued =
        Queue({MessageHeader::Kind::request, true, msgid, awaited.sequence}, data, sendDeadline);
    if (queued != kCFMessagePortSuccess) {
        return queued;
    }
    CFRunLoopAddSource(awaited.loop.Ref(), source_, replyMode);
    const auto over = [&] {
        const std::lock_guard lock(mutex_);
        return awaited.reply != nullptr || !StillValid();
    };
    // The receive time-out begins when the request has been sent.
    if (HasUnsent()) {
        awaited.loop.RunUntil(replyMode, sendDeadline, [&] { return !HasUnsent() || over(); });
    }
    awaited.loop.RunUntil(
        replyMode,
        run_loop::Later(run_loop::Now(), run_loop::Nanoseconds(std::max(receiveTimeout, 0.0))),
        over);
    const std::lock_guard lock(mutex_);
    if (awaited.reply == nullptr) {
        return StillValid() ? kCFMessagePortReceiveTimeout : kCFMessagePortBecameInvalidError;
    }
    if (reply != nullptr) {
        *reply = awaited.reply.release();
    }
    return kCFMessagePortSuccess;
}

bool RemotePort::HasUnsent() {
    const std::lock_guard lock(mutex_);
    return writer_.Queued() > 0;
}

SInt32 RemotePort::Queue(const MessageHeader& header, std::span<const std::uint8_t> data,
                         run_loop::Instant deadline) {
    if (data.size() > kLargestData) {
        return kCFMessagePortTransportError;
    }
    if (!StillValid()) {
        return kCFMessagePortIsInvalid;
    }
    const HeaderBytes bytes = EncodeHeader(header);
    SendProgress progress = SendProgress::notBegun;
    while (progress == SendProgress::notBegun) {
        if (!WaitForRoom(deadline)) {
            return kCFMessagePortSendTimeout;
        }
        progress = Begin(bytes, data);
        if (progress == SendProgress::notBegun &&
            !run_loop::WaitUntilWritable(descriptor_.get(), deadline)) {
            return kCFMessagePortSendTimeout;
        }
    }
    if (progress == SendProgress::failed) {
        Invalidate();
        return kCFMessagePortTransportError;
    }
    return kCFMessagePortSuccess;
}

// There is no notification when the peer has taken a message, so this polls.
bool RemotePort::WaitForRoom(run_loop::Instant deadline) {
    constexpr run_loop::Instant kLook = 500'000;  // 0.5 ms
    for (;;) {
        {
            const std::lock_guard lock(mutex_);
            if (!descriptor_ || queue_.HasRoom(descriptor_.get())) {
                return true;
            }
        }
        const run_loop::Instant now = run_loop::Now();
        if (now >= deadline) {
            return false;
        }
        run_loop::Sleep(std::min(deadline, now + kLook), deadline);
    }
}

RemotePort::SendProgress RemotePort::Begin(std::span<const std::uint8_t> header,
                                           std::span<const std::uint8_t> data) {
    const std::lock_guard lock(mutex_);
    if (!descriptor_) {
        return SendProgress::failed;
    }
    Status status = writer_.Flush(descriptor_.get());
    if (status == Status::pending) {
        return SendProgress::notBegun;
    }
    if (status == Status::done) {
        status = writer_.Write(descriptor_.get(), header, data);
    }
    if (status == Status::pending && writer_.TakeBack()) {
        return SendProgress::notBegun;
    }
    queue_.Sent(descriptor_.get());
    return AfterSending(status);
}

RemotePort::SendProgress RemotePort::Continue() {
    const std::lock_guard lock(mutex_);
    return descriptor_ ? AfterSending(writer_.Flush(descriptor_.get())) : SendProgress::failed;
}

RemotePort::SendProgress RemotePort::AfterSending(Status status) {
    if (status == Status::closed) {
        return SendProgress::failed;
    }
    const std::uint32_t events = status == Status::pending ? EPOLLIN | EPOLLOUT : EPOLLIN;
    if (events != watched_) {
        watched_ = events;
        run_loop::Watch(source_, descriptor_.get(), events);
    }
    return status == Status::pending ? SendProgress::begun : SendProgress::sent;
}

bool RemotePort::Ready(int, std::uint32_t) {
    bool usable = true;
    bool delivered = false;
    {
        const std::lock_guard lock(mutex_);
        if (!descriptor_) {
            return false;
        }
        if (writer_.Queued() > 0) {
            usable = AfterSending(writer_.Flush(descriptor_.get())) != SendProgress::failed;
        }
        usable = ReadReplies(&delivered) && usable;
    }
    if (!usable) {
        Invalidate();
    }
    return delivered;
}

bool RemotePort::ReadReplies(bool* delivered) {
    const auto status = reader_.ReadFrom(descriptor_.get());
    while (const auto payload = reader_.Next()) {
        const std::optional<Message> message = DecodeMessage(*payload);
        if (!message || message->header.kind != MessageHeader::Kind::reply) {
            return false;
        }
        *delivered = Deliver(*message) || *delivered;
    }
    return status == local_socket::FrameReader::Status::open;
}

// A reply for which nobody waits any more is dropped.
bool RemotePort::Deliver(const Message& reply) {
    for (Awaited* awaited : awaited_) {
        if (awaited->sequence == reply.header.sequence && awaited->reply == nullptr) {
            awaited->reply.reset(CreateCopy(reply.data));
            awaited->loop.WakeUp();
            return true;
        }
    }
    return false;
}

}  // namespace message_port
