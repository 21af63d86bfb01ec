// How messages travel between a process and the desktop over a session socket.
//
// The payload of every frame (see platform/LocalSocket/Frames.h) is
//   1 byte   kind
//   4 bytes  sequence number, least significant byte first
//   rest     one message (see Messages.h)
// A reply has the sequence number of its request; a notification has 0. Replies may come late,
// even after later requests were sent: the process drops those it no longer waits for. The first
// request of a connection is `hello`; notifications are sent only after its reply.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace desktop_link {

inline constexpr std::string_view kSocketName = "krt9-desktop";

// Bytes. More than the widest list of elements needs; a peer that announces more is broken.
inline constexpr std::size_t kLargestPayload = std::size_t{64} << 20;

enum class FrameKind : std::uint8_t { request = 1, reply = 2, notification = 3 };

struct Frame {
    FrameKind kind = FrameKind::request;
    std::uint32_t sequence = 0;
    std::span<const std::uint8_t> message;  // borrowed
};

inline constexpr std::size_t kHeaderSize = 5;

std::array<std::uint8_t, kHeaderSize> MakeHeader(FrameKind kind, std::uint32_t sequence);

std::vector<std::uint8_t> MakePayload(FrameKind kind, std::uint32_t sequence,
                                      std::span<const std::uint8_t> message);

// Nothing when the payload is shorter than its header or of an unknown kind. The message inside is
// not examined.
std::optional<Frame> ParsePayload(std::span<const std::uint8_t> payload);

}  // namespace desktop_link
