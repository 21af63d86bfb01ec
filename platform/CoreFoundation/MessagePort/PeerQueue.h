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
    // For each message that may still be there, oldest first: how much memory was not taken when
    // it had just been written, less what older messages held of it by then.
    std::deque<int> sizes_;
    void Forget(int untaken);
};

}  // namespace message_port
