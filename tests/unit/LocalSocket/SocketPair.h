// Two connected stream sockets, neither of which blocks.
#pragma once

#include <gtest/gtest.h>
#include <sys/socket.h>

#include "platform/LocalSocket/Socket.h"

namespace local_socket {

class SocketPair : public testing::Test {
  protected:
    void SetUp() override {
        int pair[2];
        ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, pair), 0);
        near_ = Descriptor(pair[0]);
        far_ = Descriptor(pair[1]);
    }

    Descriptor near_;
    Descriptor far_;
};

}  // namespace local_socket
