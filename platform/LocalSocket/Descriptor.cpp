#include <unistd.h>

#include <utility>

#include "platform/LocalSocket/Socket.h"

namespace local_socket {

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    const int taken = other.release();  // before the reset: both may be the same
    reset();
    descriptor_ = taken;
    return *this;
}

int Descriptor::release() {
    return std::exchange(descriptor_, -1);
}

void Descriptor::reset() {
    if (descriptor_ >= 0) {
        // Linux frees the number even when close() is interrupted, so it is never called again.
        close(release());
    }
}

}  // namespace local_socket
