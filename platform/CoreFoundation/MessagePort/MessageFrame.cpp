#include "platform/CoreFoundation/MessagePort/MessageFrame.h"

namespace message_port {
namespace {

constexpr std::uint8_t kWantsReply = 1;

void Store(std::uint8_t* bytes, std::uint32_t value) {
    for (int i = 0; i < 4; ++i) {
        bytes[i] = static_cast<std::uint8_t>(value >> (8 * i));
    }
}

std::uint32_t Load(const std::uint8_t* bytes) {
    std::uint32_t value = 0;
    for (int i = 3; i >= 0; --i) {
        value = value << 8 | bytes[i];
    }
    return value;
}

}  // namespace

HeaderBytes EncodeHeader(const MessageHeader& header) {
    HeaderBytes bytes{};
    bytes[0] = static_cast<std::uint8_t>(header.kind);
    bytes[1] = header.wantsReply ? kWantsReply : 0;
    Store(&bytes[4], static_cast<std::uint32_t>(header.msgid));
    Store(&bytes[8], header.sequence);
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
    header.msgid = static_cast<std::int32_t>(Load(&payload[4]));
    header.sequence = Load(&payload[8]);
    return Message{header, payload.subspan(kHeaderSize)};
}

}  // namespace message_port
