// How a message travels between two ports: the payload of one socket frame is this header, then the
// message's data.
//
//   offset 0  kind      1 byte
//          1  flags     1 byte
//          2  (zero)    2 bytes
//          4  msgid     4 bytes, little-endian
//          8  sequence  4 bytes, little-endian; a reply has that of its request
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace message_port {

// The largest message a port takes. A peer that sends more is disconnected.
inline constexpr std::size_t kLargestData = std::size_t{16} * 1024 * 1024;

inline constexpr std::size_t kHeaderSize = 12;

struct MessageHeader {
    enum class Kind : std::uint8_t { request = 1, reply = 2 };

    Kind kind = Kind::request;
    bool wantsReply = false;
    std::int32_t msgid = 0;
    std::uint32_t sequence = 0;
};

using HeaderBytes = std::array<std::uint8_t, kHeaderSize>;

HeaderBytes EncodeHeader(const MessageHeader& header);

struct Message {
    MessageHeader header;
    std::span<const std::uint8_t> data;  // within the payload
};

// Nothing for a payload that is not a message.
std::optional<Message> DecodeMessage(std::span<const std::uint8_t> payload);

}  // namespace message_port
