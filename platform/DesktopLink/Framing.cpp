#include "platform/DesktopLink/Framing.h"

namespace desktop_link {

std::array<std::uint8_t, kHeaderSize> MakeHeader(FrameKind kind, std::uint32_t sequence) {
    return {static_cast<std::uint8_t>(kind), static_cast<std::uint8_t>(sequence),
            static_cast<std::uint8_t>(sequence >> 8), static_cast<std::uint8_t>(sequence >> 16),
            static_cast<std::uint8_t>(sequence >> 24)};
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
    std::uint32_t sequence = 0;
    for (unsigned byte = 0; byte < 4; ++byte) {
        sequence |= std::uint32_t{payload[1 + byte]} << (8 * byte);
    }
    return Frame{kind, sequence, payload.subspan(kHeaderSize)};
}

}  // namespace desktop_link
