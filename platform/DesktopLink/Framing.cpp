#include "platform/DesktopLink/Framing.h"

#include "platform/LocalSocket/LittleEndian.h"

namespace desktop_link {

std::array<std::uint8_t, kHeaderSize> MakeHeader(FrameKind kind, std::uint32_t sequence) {
    std::array<std::uint8_t, kHeaderSize> header{static_cast<std::uint8_t>(kind)};
    local_socket::StoreLittleEndian(sequence, &header[1]);
    return header;
}

std::vector<std::uint8_t> MakePayload(FrameKind kind, std::uint32_t sequence,
                                      std::span<const std::uint8_t> message) {
    const auto header = MakeHeader(kind, sequence);
    std::vector<std::uint8_t> payload;
    payload.reserve(header.size() + message.size());
    payload.insert(payload.end(), header.begin(), header.end());
    payload.insert(payload.end(), message.begin(), message.end());
    return payload;
}

std::optional<Frame> ParsePayload(std::span<const std::uint8_t> payload) {
    if (payload.size() < kHeaderSize) {
        return std::nullopt;
    }
    const auto kind = static_cast<FrameKind>(payload[0]);
    if (kind != FrameKind::request && kind != FrameKind::reply && kind != FrameKind::notification) {
        return std::nullopt;
    }
    return Frame{kind, local_socket::LoadLittleEndian(&payload[1]), payload.subspan(kHeaderSize)};
}

}  // namespace desktop_link
