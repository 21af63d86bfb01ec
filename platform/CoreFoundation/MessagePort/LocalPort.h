// A port that this process serves.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>

#include "platform/CoreFoundation/MessagePort/MessageFrame.h"
#include "platform/CoreFoundation/MessagePort/Port.h"
#include "platform/LocalSocket/Socket.h"

namespace message_port {

// Requests are served one at a time, in the order of their arrival, each by one call of the
// callback. A peer can harm only itself: one that sends malformed messages is disconnected, one
// that does not read its replies is not served any more, and one that floods the port has one turn
// among the others' and is read only as fast as it is served.
//
// Created on any thread; then used on the thread whose run loop holds its source.
class LocalPort final : public Port {
  public:
    // Null when the name cannot be served. The name may be empty: such a port is unreachable.
    // The context is copied, its info retained if it can be.
    static Retained<LocalPort> Create(std::string name, CFMessagePortCallBack callback,
                                      const CFMessagePortContext* context);

    // The valid local port of this process with that name, or nothing.
    static Retained<LocalPort> Find(const std::string& name);

    ~LocalPort() override = default;
    bool IsRemote() const override { return false; }

    // The one source of this port, retained for the caller; a new one if that was invalidated.
    CFRunLoopSourceRef CreateSource(CFIndex order);

  private:
    struct Peer {
        explicit Peer(local_socket::Descriptor socket)
            : descriptor(std::move(socket)), reader(kHeaderSize + kLargestData) {}

        local_socket::Descriptor descriptor;  // none: dropped
        local_socket::FrameReader reader;
        local_socket::FrameWriter writer;
        std::uint32_t watched = 0;  // epoll's events; 0: not watched
        int beingServed = 0;        // callbacks that run for it; they may nest
        bool hasTurn = false;
        bool ended = false;  // has stopped sending; dropped once it has its replies
    };
    using PeerPointer = std::shared_ptr<Peer>;

    LocalPort(std::string name, std::optional<local_socket::Listener> listener,
              CFMessagePortCallBack callback, const CFMessagePortContext* context);

    void End() override;
    void* Info() const override { return context_.info; }
    void ReleaseInfo() override;
    bool Ready(int descriptor, std::uint32_t events) override;

    void AcceptPeers();
    void HandlePeer(const PeerPointer& peer);
    bool ServeNext();
    void Serve(const PeerPointer& peer, const local_socket::OwnedPayload& payload);
    void Answer(const PeerPointer& peer, const MessageHeader& request, CFDataRef reply);
    // After any event of the peer: gives it a turn, sets what to wait for, or drops it.
    void Settle(const PeerPointer& peer);
    static std::uint32_t EventsToWaitFor(const Peer& peer);
    void Watch(Peer& peer, std::uint32_t events);
    void Drop(const PeerPointer& peer);  // not twice

    std::optional<local_socket::Listener> listener_;
    const CFMessagePortCallBack callback_;
    CFMessagePortContext context_ = {};
    CFRunLoopSourceRef source_ = nullptr;
    std::map<int, PeerPointer> peers_;  // by descriptor
    std::deque<PeerPointer> turns_;     // peers with requests that may be served, each once
    bool backlog_ = false;
};

}  // namespace message_port
