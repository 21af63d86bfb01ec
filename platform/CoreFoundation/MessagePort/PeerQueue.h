// How many messages are in a peer's queue, as far as this sender knows.
//
// On macOS a port's queue holds 5 messages by default, from all senders together; a sender
// waits for room until its time-out. A socket's buffer holds hundreds. So the sender counts its
// own: the system says how much of what was written the peer has not taken yet, and messages are
// taken in their order.
#pragma once

#include <deque>

namespace message_port {

class PeerQueue {
  public:
    // Whether another message may be sent.
    bool HasRoom(int socket);

    // A message has been written to the socket, or a part of it.
    void Sent(int socket);

  private:
    // Drops the oldest messages that the peer must have taken, given the bytes of socket memory
    // that it has not.
    void Forget(int untaken);

    // For each message that the peer may not have taken yet, oldest first: the bytes of socket
    // memory by which writing it increased what is not taken.
    std::deque<int> sizes_;
};

}  // namespace message_port
