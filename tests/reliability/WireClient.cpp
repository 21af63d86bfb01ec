#include "tests/reliability/WireClient.h"

namespace test_support {

namespace {

using message_port::MessageHeader;

std::int32_t CodeOf(std::string_view code) {
    std::uint32_t value = 0;
    for (const char character : code) {
        value = value << 8 | static_cast<unsigned char>(character);
    }
    return static_cast<std::int32_t>(value);
}

}  // namespace

Bytes WireClient::Request(std::string_view code, const Bytes& body, std::uint32_t sequence) {
    return FramedMessage(
        {MessageHeader::Kind::request, /*wantsReply=*/true, CodeOf(code), sequence}, body);
}

std::optional<WireClient::Reply> WireClient::ReceiveReply(double seconds) {
    const auto payload = ReceivePayload(seconds);
    const auto message =
        payload ? message_port::DecodeMessage(*payload) : std::optional<message_port::Message>();
    if (!message || message->header.kind != MessageHeader::Kind::reply) {
        return std::nullopt;
    }
    return Reply{message->header.sequence, Bytes(message->data.begin(), message->data.end())};
}

}  // namespace test_support
