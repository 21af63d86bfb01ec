#include "platform/CoreFoundation/MessagePort/PeerQueue.h"

#include <linux/sockios.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <numeric>

#include "platform/Variants/Variants.h"

namespace message_port {
namespace {

constexpr std::size_t kQueueLimit = 5;

// Memory of what was written and the peer has not taken, in the system's own measure.
int Untaken(int socket) {
    int bytes = 0;
    ioctl(socket, SIOCOUTQ, &bytes);
    return bytes;
}

}  // namespace

// The oldest messages are taken first.
void PeerQueue::Forget(int untaken) {
    int total = std::accumulate(sizes_.begin(), sizes_.end(), 0);
    while (!sizes_.empty() && total - sizes_.front() >= untaken) {
        total -= sizes_.front();
        sizes_.pop_front();
    }
}

bool PeerQueue::HasRoom(int socket) {
    if (platform_testing::IsOn(platform_testing::Variant::longPortQueue)) {
        return true;
    }
    Forget(Untaken(socket));
    return sizes_.size() < kQueueLimit;
}

void PeerQueue::Sent(int socket) {
    const int untaken = Untaken(socket);
    Forget(untaken);
    const int older = std::accumulate(sizes_.begin(), sizes_.end(), 0);
    if (untaken > older) {
        sizes_.push_back(untaken - older);
    }
}

}  // namespace message_port
