#include "platform/DesktopLink/SocketTransport.h"

#include <syslog.h>

#include <utility>

#include "platform/DesktopLink/Session.h"

namespace desktop_link {

namespace {

// More than any session produces between two turns of a run loop; beyond it the oldest are dropped,
// so that a process that never runs its loop does not grow.
constexpr std::size_t kMostUndelivered = 1024;

}  // namespace

SocketTransport::SocketTransport(std::string_view socketName) : socketName_(socketName) {}

SocketTransport::~SocketTransport() = default;

std::optional<Reply> SocketTransport::Exchange(const Request& request, double timeout) {
    const Deadline deadline = DeadlineAfter(timeout);
    unreachable_ = !connection_ && !Connect();
    if (request.operation == Operation::hello) {
        return AwaitSession(deadline);
    }
    if (unreachable_) {
        return std::nullopt;
    }
    std::uint32_t sequence = Send(request, deadline);
    if (sequence == 0 && !connection_) {
        // The desktop went away since the last exchange, so it has not seen this request; another
        // one may run by now.
        unreachable_ = !Connect();
        sequence = unreachable_ ? 0 : Send(request, deadline);
    }
    return sequence == 0 ? std::nullopt : Await(sequence, deadline);
}

void SocketTransport::SetNotificationHandler(std::function<void(const Notification&)> handler) {
    handler_ = std::move(handler);
    if (!handler_) {
        undelivered_.clear();
        watch_.reset();
        return;
    }
    if (!watch_) {
        watch_ = std::make_unique<MainLoopWatch>([this] { return MainLoopWoke(); });
        if (connection_) {
            watch_->Watch(connection_->descriptor());
        }
    }
}

bool SocketTransport::Connect() {
    connection_ = Connection::Open(socketName_);
    if (!connection_) {
        ReportPlanted();
        return false;
    }
    if (watch_) {
        watch_->Watch(connection_->descriptor());
    }
    helloSequence_ = Send(Request{}, DeadlineAfter(0));
    if (helloSequence_ == 0 && connection_) {
        Disconnect();
    }
    return connection_.has_value();
}

// Logged once, though every exchange tries again. A refused folder is not mentioned here: the
// message ports log it.
void SocketTransport::ReportPlanted() {
    std::string problem = local_socket::NameProblem(socketName_);
    if (!problem.empty() && problem != reported_) {
        syslog(LOG_ERR, "no desktop: %s", problem.c_str());
    }
    reported_ = std::move(problem);
}

void SocketTransport::Disconnect() {
    if (watch_) {
        watch_->Unwatch(connection_->descriptor());
    }
    connection_.reset();
    helloSequence_ = 0;
    session_.reset();
    AnnounceIfNews(std::nullopt);
}

std::uint32_t SocketTransport::Send(const Request& request, Deadline deadline) {
    const std::uint32_t sequence = ++lastSequence_ != 0 ? lastSequence_ : ++lastSequence_;
    const Connection::Outcome outcome =
        connection_->Send(MakeHeader(FrameKind::request, sequence), Encode(request), deadline);
    if (outcome == Connection::Outcome::closed) {
        Disconnect();
    }
    return outcome == Connection::Outcome::done ? sequence : 0;
}

std::optional<Reply> SocketTransport::Await(std::uint32_t sequence, Deadline deadline) {
    while (connection_) {
        const Connection::Outcome outcome = connection_->WaitAndRead(deadline);
        std::optional<Reply> reply = TakeReceived(sequence);
        if (outcome == Connection::Outcome::closed && connection_) {
            Disconnect();
        }
        if (reply || outcome == Connection::Outcome::late) {
            return reply;
        }
    }
    return std::nullopt;
}

std::optional<Reply> SocketTransport::AwaitSession(Deadline deadline) {
    if (!session_ && helloSequence_ != 0) {
        Await(helloSequence_, deadline);
    }
    if (!session_) {
        told_.emplace(std::nullopt);
        return std::nullopt;
    }
    if (!told_) {
        told_ = session_->frontApplication;
    }
    Reply reply;
    reply.session = session_;
    return reply;
}

std::optional<Reply> SocketTransport::TakeReceived(std::uint32_t sequence) {
    std::optional<Reply> awaited;
    while (const auto payload = connection_->Next()) {
        const std::optional<Frame> frame = ParsePayload(*payload);
        if (!frame || !Take(*frame, sequence, awaited)) {
            Disconnect();
            break;
        }
    }
    return awaited;
}

// False for a frame that no desktop sends.
bool SocketTransport::Take(const Frame& frame, std::uint32_t sequence,
                           std::optional<Reply>& awaited) {
    if (frame.kind == FrameKind::notification) {
        const auto notification = DecodeNotification(frame.message.data(), frame.message.size());
        if (notification && session_) {
            Queue(notification->activated);
        }
        return notification.has_value();
    }
    if (frame.kind != FrameKind::reply) {
        return false;
    }
    const bool ofHello = helloSequence_ != 0 && frame.sequence == helloSequence_;
    if (!ofHello && frame.sequence != sequence) {
        return true;  // the reply to a call that has stopped waiting
    }
    std::optional<Reply> reply = DecodeReply(frame.message.data(), frame.message.size());
    if (!reply) {
        return false;
    }
    if (ofHello) {
        TakeSession(*reply);
    }
    if (frame.sequence == sequence) {
        awaited = std::move(reply);
    }
    return true;
}

void SocketTransport::TakeSession(const Reply& reply) {
    helloSequence_ = 0;
    session_ = reply.session.value_or(Session{});
    AdoptMessagingTimeout(session_->messagingTimeout);
    AnnounceIfNews(session_->frontApplication);
}

void SocketTransport::AnnounceIfNews(const std::optional<Application>& front) {
    if (told_ && *told_ != front) {
        Queue(front);
    }
}

void SocketTransport::Queue(const std::optional<Application>& front) {
    told_ = front;
    if (!watch_) {
        if (session_) {
            session_->frontApplication = front;
        }
        return;
    }
    if (undelivered_.size() == kMostUndelivered) {
        undelivered_.pop_front();
    }
    undelivered_.push_back(Notification{front});
    watch_->SetBacklog(true);
}

bool SocketTransport::MainLoopWoke() {
    if (connection_) {
        const Connection::Outcome outcome = connection_->Read();
        TakeReceived(0);
        if (outcome == Connection::Outcome::closed && connection_) {
            Disconnect();
            Connect();  // another desktop may already be there
        }
    }
    if (watch_->SessionFolderChanged() && !connection_) {
        Connect();
    }
    return DeliverNotification();
}

bool SocketTransport::DeliverNotification() {
    if (undelivered_.empty()) {
        return false;
    }
    const Notification notification = std::move(undelivered_.front());
    undelivered_.pop_front();
    watch_->SetBacklog(!undelivered_.empty());
    if (session_) {
        session_->frontApplication = notification.activated;
    }
    const auto handler = handler_;
    handler(notification);  // it may replace this transport
    return true;
}

}  // namespace desktop_link
