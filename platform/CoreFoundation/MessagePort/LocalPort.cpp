#include "platform/CoreFoundation/MessagePort/LocalPort.h"

#include <sys/epoll.h>

#include <utility>

#include "platform/CoreFoundation/MessagePort/MessageData.h"
#include "platform/CoreFoundation/MessagePort/PortTable.h"
#include "platform/CoreFoundation/Runtime/Owned.h"
#include "platform/Variants/Variants.h"

namespace message_port {
namespace {

using core_foundation::Owned;
using Table = PortTable<LocalPort>;

// Beyond this, nothing is read from a peer whose requests have not been served yet.
constexpr std::size_t kEnoughBuffered = std::size_t{64} * 1024;

// Connections are accepted in portions, so that many at once do not delay the connected peers.
constexpr int kLargestPortion = 16;

// Increments the counter during its lifetime, which also ends with an exception.
class Counted {
  public:
    explicit Counted(int& count) : count_(count) { ++count_; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    ~Counted() { --count_; }

  private:
    int& count_;
};

}  // namespace

Retained<LocalPort> LocalPort::Find(const std::string& name) {
    return Table::Instance().Find(name);
}

Retained<LocalPort> LocalPort::Create(std::string name, CFMessagePortCallBack callback,
                                      const CFMessagePortContext* context) {
    std::optional<local_socket::Listener> listener;
    if (!name.empty()) {
        bool taken = false;
        std::string problem;
        listener = local_socket::Listener::Create(name, &taken, &problem);
        if (!listener) {
            LogProblem(name, taken ? "the name is taken by another process" : problem);
            return {};
        }
    }
    auto port = Retained<LocalPort>::Adopt(
        new LocalPort(std::move(name), std::move(listener), callback, context));
    platform_testing::InterruptOnce(platform_testing::Variant::interruptAfterPort);
    return port;
}

LocalPort::LocalPort(std::string name, std::optional<local_socket::Listener> listener,
                     CFMessagePortCallBack callback, const CFMessagePortContext* context)
    : Port(std::move(name)), listener_(std::move(listener)), callback_(callback) {
    if (context != nullptr) {
        context_ = *context;
        if (context_.retain != nullptr) {
            context_.info = const_cast<void*>(context_.retain(context_.info));
        }
    }
    if (listener_) {
        Table::Instance().Enter(RegisteredName(), this);
    }
}

void LocalPort::End() {
    Table::Instance().Remove(RegisteredName(), this);
    turns_.clear();
    while (!peers_.empty()) {
        const auto entry = peers_.extract(peers_.begin());
        Drop(entry.mapped());
    }
    if (source_ != nullptr && listener_) {
        run_loop::Unwatch(source_, listener_->descriptor());
    }
    listener_.reset();
}

void LocalPort::ReleaseInfo() {
    if (context_.release != nullptr) {
        context_.release(context_.info);
    }
    context_.info = nullptr;
    if (source_ != nullptr) {
        CFRunLoopSourceInvalidate(source_);
        CFRelease(std::exchange(source_, nullptr));
    }
}

CFRunLoopSourceRef LocalPort::CreateSource(CFIndex order) {
    if (source_ != nullptr && !CFRunLoopSourceIsValid(source_)) {
        CFRelease(std::exchange(source_, nullptr));
    }
    if (source_ == nullptr) {
        source_ = CreateDescriptorSource(order, run_loop::Presence::occupiesMode);
        if (listener_) {
            run_loop::Watch(source_, listener_->descriptor(), EPOLLIN);
        }
        for (const auto& [descriptor, peer] : peers_) {
            if (peer->watched != 0) {
                run_loop::Watch(source_, descriptor, peer->watched);
            }
        }
        run_loop::SetBacklog(source_, backlog_);
    }
    CFRetain(source_);
    return source_;
}

bool LocalPort::Ready(int descriptor, std::uint32_t) {
    if (descriptor == listener_->descriptor()) {
        AcceptPeers();
        return false;
    }
    if (const auto found = peers_.find(descriptor); found != peers_.end()) {
        const PeerPointer peer = found->second;
        HandlePeer(peer);
    }
    return ServeNext();
}

void LocalPort::AcceptPeers() {
    for (int i = 0; i < kLargestPortion; ++i) {
        local_socket::Descriptor descriptor = listener_->Accept();
        if (!descriptor) {
            return;
        }
        const int number = descriptor.get();
        const auto peer = std::make_shared<Peer>(std::move(descriptor));
        peers_[number] = peer;
        Settle(peer);
    }
}

void LocalPort::HandlePeer(const PeerPointer& peer) {
    const int descriptor = peer->descriptor.get();
    if (peer->writer.Queued() > 0) {
        if (peer->writer.Flush(descriptor) == local_socket::FrameWriter::Status::closed) {
            Drop(peer);
            return;
        }
    } else {
        peer->ended = peer->reader.ReadFrom(descriptor) != local_socket::FrameReader::Status::open;
    }
    Settle(peer);
}

bool LocalPort::ServeNext() {
    std::optional<local_socket::OwnedPayload> payload;
    PeerPointer peer;
    while (!payload && !turns_.empty()) {
        peer = std::move(turns_.front());
        turns_.pop_front();
        peer->hasTurn = false;
        // The peer must first read its replies; then it gets its turn again.
        if (peer->descriptor && peer->writer.Queued() == 0) {
            payload = peer->reader.Take();
        }
    }
    // The callback may run the loop, so the state must be consistent before it is called.
    std::optional<Counted> serving;
    if (payload) {
        serving.emplace(peer->beingServed);
        Settle(peer);
    }
    if (backlog_ != !turns_.empty()) {
        backlog_ = !turns_.empty();
        run_loop::SetBacklog(source_, backlog_);
    }
    if (!payload) {
        return false;
    }
    Serve(peer, *payload);
    serving.reset();
    Settle(peer);
    return true;
}

void LocalPort::Serve(const PeerPointer& peer, const local_socket::OwnedPayload& payload) {
    const std::optional<Message> message = DecodeMessage(payload.bytes);
    if (!message || message->header.kind != MessageHeader::Kind::request) {
        Drop(peer);
        return;
    }
    // The context's info lives at least as long as the call. The data does not live longer: a
    // callback that keeps it without a copy reads freed memory.
    const CFMessagePortContext context = context_;
    void* info =
        context.retain != nullptr ? const_cast<void*>(context.retain(context.info)) : context.info;
    const Owned<CFDataRef> data(CreateView(message->data));
    const Owned<CFDataRef> reply(
        callback_ != nullptr ? callback_(Ref(), message->header.msgid, data.get(), info) : nullptr);
    if (context.retain != nullptr && context.release != nullptr) {
        context.release(info);
    }
    if (StillValid() && message->header.wantsReply) {
        Answer(peer, message->header, reply.get());
    }
}

// Null data is a reply, too.
void LocalPort::Answer(const PeerPointer& peer, const MessageHeader& request, CFDataRef reply) {
    if (!peer->descriptor) {
        return;
    }
    const HeaderBytes header =
        EncodeHeader({MessageHeader::Kind::reply, false, request.msgid, request.sequence});
    if (peer->writer.Write(peer->descriptor.get(), header, BytesOf(reply)) ==
        local_socket::FrameWriter::Status::closed) {
        Drop(peer);
    }
}

void LocalPort::Settle(const PeerPointer& peer) {
    if (!peer->descriptor) {
        return;
    }
    const bool idle =
        !peer->reader.HasFrame() && peer->writer.Queued() == 0 && peer->beingServed == 0;
    if (peer->ended && idle) {
        Drop(peer);
        return;
    }
    const bool servable = peer->reader.HasFrame() && peer->writer.Queued() == 0;
    if (servable && !peer->hasTurn) {
        peer->hasTurn = true;
        turns_.push_back(peer);
    }
    Watch(*peer, EventsToWaitFor(*peer));
}

std::uint32_t LocalPort::EventsToWaitFor(const Peer& peer) {
    if (peer.writer.Queued() > 0) {
        return EPOLLOUT;
    }
    const bool enough = peer.reader.HasFrame() && peer.reader.Buffered() >= kEnoughBuffered;
    return peer.ended || enough ? 0 : EPOLLIN;
}

void LocalPort::Watch(Peer& peer, std::uint32_t events) {
    if (events == peer.watched) {
        return;
    }
    peer.watched = events;
    // A peer's hang-up would be reported even if no event is requested.
    if (events == 0) {
        run_loop::Unwatch(source_, peer.descriptor.get());
    } else {
        run_loop::Watch(source_, peer.descriptor.get(), events);
    }
}

void LocalPort::Drop(const PeerPointer& peer) {
    Watch(*peer, 0);
    const local_socket::Descriptor ended = std::move(peer->descriptor);
    peers_.erase(ended.get());
}

}  // namespace message_port
