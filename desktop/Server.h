// Serves a desktop to the processes of the session: one thread, many clients, none of which can
// hold up another.
//
// A request to a hung application is kept until the application is released; later requests of the
// same client are answered meanwhile.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <list>
#include <span>
#include <utility>

#include "desktop/Desktop.h"
#include "platform/DesktopLink/Framing.h"
#include "platform/LocalSocket/Frames.h"
#include "platform/LocalSocket/Socket.h"

namespace desktop {

class Server {
  public:
    Server(Desktop& desktop, local_socket::Listener listener);
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    // Serves until `stopDescriptor` becomes readable or a command asks it to end. Time passes in
    // the desktop as in reality.
    void Run(int stopDescriptor);

  private:
    struct Peer {
        ClientId id = 0;
        local_socket::Descriptor descriptor;
        local_socket::FrameReader reader{desktop_link::kLargestPayload};
        local_socket::FrameWriter writer;
        bool greeted = false;  // `hello` was answered: notifications may follow
        bool ended = false;  // nothing more can be read from it; what was received is still served
        bool unwritable = false;  // nothing more can be sent to it
        std::deque<std::pair<std::uint32_t, desktop_link::Request>> waiting;  // for hung ones
    };

    static bool Finished(const Peer& peer);
    static bool HasWork(const Peer& peer);

    void Accept();
    void Read(Peer& peer);
    void ServeFrames(Peer& peer);
    void ServeFrame(Peer& peer, std::span<const std::uint8_t> payload);
    void Answer(Peer& peer, std::uint32_t sequence, const desktop_link::Request& request);
    void RetryWaiting();
    void Notify(const desktop_link::Notification& notification);
    void Send(Peer& peer, std::span<const std::uint8_t> payload);
    static void Drop(Peer& peer);
    void PassTime();
    int PollTimeout() const;  // milliseconds, -1 for ever

    Desktop& desktop_;
    local_socket::Listener listener_;
    int subscription_;
    std::list<Peer> peers_;
    ClientId lastClient_ = 0;
    std::chrono::steady_clock::time_point now_;
};

}  // namespace desktop
