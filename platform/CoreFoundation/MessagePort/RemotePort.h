// A port of another process, or of this one, as its client sees it: one connection.
#pragma once

#include <sys/epoll.h>

#include <cstdint>
#include <mutex>
#include <span>
#include <vector>

#include "platform/CoreFoundation/MessagePort/MessageFrame.h"
#include "platform/CoreFoundation/MessagePort/PeerQueue.h"
#include "platform/CoreFoundation/MessagePort/Port.h"
#include "platform/CoreFoundation/RunLoop/RunLoop.h"
#include "platform/LocalSocket/Socket.h"

namespace message_port {

// Any thread. The run loop of the thread that created the port notices the peer's end while it
// runs.
class RemotePort final : public Port {
  public:
    // The valid remote port of that name if this process has one, else a new one. Null when no
    // process serves the name.
    static Retained<RemotePort> FindOrConnect(const std::string& name);

    ~RemotePort() override;
    bool IsRemote() const override { return true; }
    bool IsValid() override;

    // Queues a request that wants no reply. The result is one of CFMessagePort's codes; the
    // time-out is seconds, as CFMessagePortSendRequest has it.
    SInt32 Send(std::int32_t msgid, std::span<const std::uint8_t> data, CFTimeInterval timeout);

    // Sends a request and runs the current run loop in the mode until its reply is there. On
    // success `reply` belongs to the caller.
    SInt32 Exchange(std::int32_t msgid, std::span<const std::uint8_t> data,
                    CFTimeInterval sendTimeout, CFTimeInterval receiveTimeout,
                    CFRunLoopMode replyMode, CFDataRef* reply);

  private:
    // A request whose reply is awaited.
    struct Awaited;

    RemotePort(std::string name, local_socket::Descriptor descriptor);

    void End() override;
    bool Ready(int descriptor, std::uint32_t events) override;

    // A message counts as queued from its first byte on, since it cannot be withdrawn then: what
    // the peer does not take in time follows later. One that has not begun is discarded.
    SInt32 Queue(const MessageHeader& header, std::span<const std::uint8_t> data,
                 run_loop::Instant deadline);
    enum class SendProgress { notBegun, begun, sent, failed };
    SendProgress Begin(std::span<const std::uint8_t> header, std::span<const std::uint8_t> data);
    SendProgress Continue();
    // Whether the peer's queue accepted another message before the deadline.
    bool WaitForRoom(run_loop::Instant deadline);
    bool HasUnsent();

    // The mutex is held.
    SendProgress AfterSending(local_socket::FrameWriter::Status status);
    bool ReadReplies(bool* delivered);  // false when the connection can no longer be used
    bool Deliver(const Message& reply);

    // Guards all that follows. Not held while anything waits or is called back.
    std::mutex mutex_;
    local_socket::Descriptor descriptor_;
    local_socket::FrameReader reader_;
    local_socket::FrameWriter writer_;
    PeerQueue queue_;
    std::uint32_t watched_ = EPOLLIN;
    std::uint32_t lastSequence_ = 0;
    std::vector<Awaited*> awaited_;

    // It is in the common modes of the creator's loop and in every mode in which a reply was
    // awaited, for as long as the port is valid. No mode counts as occupied by it.
    const CFRunLoopSourceRef source_;
};

}  // namespace message_port
