#include "desktop/Server.h"

#include <poll.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "platform/DesktopLink/Framing.h"

namespace desktop {

using desktop_link::FrameKind;
using desktop_link::Notification;
using desktop_link::Operation;
using desktop_link::Reply;
using desktop_link::Request;

namespace {

constexpr std::size_t kMostPeers = 200;
constexpr std::size_t kMostWaiting = 64;      // requests of one client to hung applications
constexpr std::size_t kFramesInARow = 64;     // of one client before the others are served
constexpr std::size_t kBusyQueue = 1u << 20;  // bytes; nothing is read from a client beyond them
constexpr std::size_t kLongestQueue = desktop_link::kLargestPayload + kBusyQueue;

}  // namespace

Server::Server(Desktop& desktop, local_socket::Listener listener)
    : desktop_(desktop),
      listener_(std::move(listener)),
      subscription_(
          desktop.Subscribe([this](const Notification& notification) { Notify(notification); })),
      now_(std::chrono::steady_clock::now()) {}

Server::~Server() {
    desktop_.Unsubscribe(subscription_);
}

void Server::Run(int stopDescriptor) {
    std::vector<pollfd> descriptors;
    while (!desktop_.QuitWanted()) {
        descriptors.clear();
        descriptors.push_back({stopDescriptor, POLLIN, 0});
        descriptors.push_back({listener_.descriptor(), POLLIN, 0});
        for (const Peer& peer : peers_) {
            const bool busy = peer.writer.Queued() >= kBusyQueue || peer.reader.HasFrame();
            const short reading = busy || peer.ended ? 0 : POLLIN;
            const short writing = peer.writer.Queued() != 0 && !peer.unwritable ? POLLOUT : 0;
            descriptors.push_back(
                {peer.descriptor.get(), static_cast<short>(reading | writing), 0});
        }
        poll(descriptors.data(), descriptors.size(), PollTimeout());
        PassTime();
        if (descriptors[0].revents != 0) {
            return;
        }
        auto ready = descriptors.begin() + 2;
        for (Peer& peer : peers_) {
            const short events = (ready++)->revents;
            if ((events & POLLOUT) != 0 && peer.writer.Flush(peer.descriptor.get()) ==
                                               local_socket::FrameWriter::Status::closed) {
                peer.unwritable = true;
            }
            // The end of a peer is noticed by reading, also while its queue is too long to be read.
            if (!peer.ended && (events & (POLLIN | POLLHUP | POLLERR)) != 0) {
                Read(peer);
            }
            ServeFrames(peer);
        }
        if (descriptors[1].revents != 0) {
            Accept();
        }
        RetryWaiting();
        peers_.remove_if(Finished);
    }
}

bool Server::HasWork(const Peer& peer) {
    return peer.reader.HasFrame() && (peer.unwritable || peer.writer.Queued() < kBusyQueue);
}

// A peer that has shut down only its sending side still gets its replies, except those of hung
// applications: most such peers have ended.
bool Server::Finished(const Peer& peer) {
    return peer.ended && !peer.reader.HasFrame() && (peer.unwritable || peer.writer.Queued() == 0);
}

void Server::Accept() {
    while (local_socket::Descriptor descriptor = listener_.Accept()) {
        if (peers_.size() == kMostPeers) {
            continue;  // closed at once
        }
        Peer& peer = peers_.emplace_back();
        peer.id = ++lastClient_;
        peer.descriptor = std::move(descriptor);
    }
}

void Server::Read(Peer& peer) {
    switch (peer.reader.ReadFrom(peer.descriptor.get())) {
        case local_socket::FrameReader::Status::open:
            return;
        case local_socket::FrameReader::Status::oversized:
            std::fprintf(stderr, "krt9-desktop: client %llu announced a message that is too long\n",
                         static_cast<unsigned long long>(peer.id));
            [[fallthrough]];
        case local_socket::FrameReader::Status::closed:
            peer.ended = true;
    }
}

void Server::ServeFrames(Peer& peer) {
    for (std::size_t i = 0; i < kFramesInARow && HasWork(peer) && !desktop_.QuitWanted(); ++i) {
        if (const auto payload = peer.reader.Next()) {
            ServeFrame(peer, *payload);
        }
    }
}

void Server::ServeFrame(Peer& peer, std::span<const std::uint8_t> payload) {
    const auto frame = desktop_link::ParsePayload(payload);
    const auto request =
        frame && frame->kind == FrameKind::request
            ? desktop_link::DecodeRequest(frame->message.data(), frame->message.size())
            : std::nullopt;
    if (!request) {
        std::fprintf(stderr, "krt9-desktop: client %llu sent something that is not a request\n",
                     static_cast<unsigned long long>(peer.id));
        Drop(peer);
        return;
    }
    Answer(peer, frame->sequence, *request);
}

void Server::Answer(Peer& peer, std::uint32_t sequence, const Request& request) {
    const auto reply = desktop_.Handle(peer.id, request);
    if (!reply) {
        if (peer.waiting.size() == kMostWaiting) {
            peer.waiting.pop_front();  // its client has long stopped waiting
        }
        peer.waiting.emplace_back(sequence, request);
        return;
    }
    auto message = desktop_link::Encode(*reply);
    if (message.size() > desktop_link::kLargestPayload - desktop_link::kHeaderSize) {
        Reply tooLong;
        tooLong.error = kFailure;
        message = desktop_link::Encode(tooLong);
    }
    Send(peer, desktop_link::MakePayload(FrameKind::reply, sequence, message));
    peer.greeted = peer.greeted || request.operation == Operation::hello;
}

void Server::RetryWaiting() {
    for (Peer& peer : peers_) {
        for (auto waiting = std::exchange(peer.waiting, {}); !waiting.empty();) {
            auto [sequence, request] = std::move(waiting.front());
            waiting.pop_front();
            if (!peer.unwritable) {
                Answer(peer, sequence, request);
            }
        }
    }
}

void Server::Notify(const Notification& notification) {
    const auto payload =
        desktop_link::MakePayload(FrameKind::notification, 0, desktop_link::Encode(notification));
    for (Peer& peer : peers_) {
        if (peer.greeted) {
            Send(peer, payload);
        }
    }
}

void Server::Send(Peer& peer, std::span<const std::uint8_t> payload) {
    if (peer.unwritable) {
        return;
    }
    const auto status = peer.writer.Write(peer.descriptor.get(), payload);
    if (status == local_socket::FrameWriter::Status::closed) {
        peer.unwritable = true;
    } else if (peer.writer.Queued() > kLongestQueue) {
        std::fprintf(stderr, "krt9-desktop: client %llu does not read its replies\n",
                     static_cast<unsigned long long>(peer.id));
        Drop(peer);
    }
}

// Ends a peer that violates the protocol: what it has sent and was to receive is discarded.
void Server::Drop(Peer& peer) {
    peer.ended = true;
    peer.unwritable = true;
    peer.reader = local_socket::FrameReader(desktop_link::kLargestPayload);
    peer.waiting.clear();
}

void Server::PassTime() {
    const auto now = std::chrono::steady_clock::now();
    desktop_.Advance(std::chrono::duration<double>(now - now_).count());
    now_ = now;
}

int Server::PollTimeout() const {
    if (std::any_of(peers_.begin(), peers_.end(), HasWork)) {
        return 0;
    }
    const auto due = desktop_.NextDue();
    constexpr double kLongestWait = 3600;  // seconds
    return due ? static_cast<int>(std::ceil(std::min(*due, kLongestWait) * 1000)) : -1;
}

}  // namespace desktop
