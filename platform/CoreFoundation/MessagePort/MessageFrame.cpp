#include "platform/CoreFoundation/MessagePort/MessageFrame.h"

#include "platform/LocalSocket/LittleEndian.h"

namespace message_port {

using local_socket::LoadLittleEndian;
using local_socket::StoreLittleEndian;

namespace {

constexpr std::uint8_t kWantsReply = 1;

}  // namespace

HeaderBytes EncodeHeader(const MessageHeader& header) {
    HeaderBytes bytes{};
    bytes[0] = static_cast<std::uint8_t>(header.kind);
    bytes[1] = header.wantsReply ? kWantsReply : 0;
    StoreLittleEndian(static_cast<std::uint32_t>(header.msgid), &bytes[4]);
    StoreLittleEndian(header.sequence, &bytes[8]);
    return bytes;
}

std::optional<Message> DecodeMessage(std::span<const std::uint8_t> payload) {
    if (payload.size() < kHeaderSize) {
        return std::nullopt;
    }
    const auto kind = static_cast<MessageHeader::Kind>(payload[0]);
    const std::uint8_t flags = payload[1];
    const bool known = kind == MessageHeader::Kind::request || kind == MessageHeader::Kind::reply;
    if (!known || (flags & ~kWantsReply) != 0 || payload[2] != 0 || payload[3] != 0) {
        return std::nullopt;
    }
    MessageHeader header;
    header.kind = kind;
    header.wantsReply = flags == kWantsReply;
    header.msgid = static_cast<std::int32_t>(LoadLittleEndian(&payload[4]));
    header.sequence = LoadLittleEndian(&payload[8]);
    return Message{header, payload.subspan(kHeaderSize)};
}

}  // namespace message_port
