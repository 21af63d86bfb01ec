#include "tests/reliability/WireClient.h"

#include "tests/support/Codes.h"

namespace test_support {

using message_port::MessageHeader;

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
