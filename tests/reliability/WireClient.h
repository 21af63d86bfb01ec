// A client of the driver's port that speaks over the bare socket, so that it can do what no message
// port would: send half a request, many at once, or never read.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "VEKCommon/Names.h"
#include "tests/support/SocketPeer.h"

namespace test_support {

class WireClient : public SocketPeer {
  public:
    // Connects to the driver of the session; Connected() is false when there is none.
    WireClient() : SocketPeer(kDriverPortName) {}

    // The frame of a request, numbered `sequence`. `code` has four characters.
    static Bytes Request(std::string_view code, const Bytes& body, std::uint32_t sequence);

    struct Reply {
        std::uint32_t sequence = 0;
        Bytes data;  // empty: no reply data
    };
    // The next reply; nothing when the driver closed the connection or `seconds` passed.
    std::optional<Reply> ReceiveReply(double seconds = kPatience);
};

}  // namespace test_support
