// The companion's port, and the messages that arrive at it.
#include <algorithm>
#include <array>

#include "companion/KRT9Companion.h"

namespace krt9 {

namespace {

constexpr char kCompanionPort[] = "VEK_KRT9";
constexpr Code kStatusQuery = CodeOf("Stus");

struct TextMessage {
    Code code;
    MessageKind kind;
};

constexpr std::array kTextMessages{TextMessage{CodeOf("JSLg"), MessageKind::language},
                                   TextMessage{CodeOf("JFSC"), MessageKind::clip},
                                   TextMessage{CodeOf("JFTC"), MessageKind::timecode}};

// Nothing unless the body is one text with its terminator and no more.
std::optional<std::string> TextOf(std::span<const std::uint8_t> body) {
    if (body.empty() || std::find(body.begin(), body.end(), 0) != body.end() - 1) {
        return std::nullopt;
    }
    return FromSystemEncoding(body.first(body.size() - 1));
}

}  // namespace

Message DecodeMessage(Code code, std::span<const std::uint8_t> body) {
    Message message{MessageKind::other, "", code, {body.begin(), body.end()}};
    if (code == kStatusQuery && body.empty()) {
        message.kind = MessageKind::statusQuery;
    }
    for (const TextMessage& known : kTextMessages) {
        if (known.code == code) {
            if (auto text = TextOf(body)) {
                message.kind = known.kind;
                message.text = *std::move(text);
            }
        }
    }
    return message;
}

// Seven words, most significant byte first. Only the first two are used.
Bytes StatusReply(const ControllerStatus& status) {
    const std::array<std::uint32_t, 7> words{status.units, status.channels};
    Bytes reply;
    for (const std::uint32_t word : words) {
        for (int shift = 24; shift >= 0; shift -= 8) {
            reply.push_back(static_cast<std::uint8_t>(word >> shift));
        }
    }
    return reply;
}

CompanionPort::CompanionPort(const ControllerStatus& status, Handler handler)
    : status_(status), handler_(std::move(handler)) {}

std::unique_ptr<CompanionPort> CompanionPort::Open(const ControllerStatus& status,
                                                   Handler handler) {
    std::unique_ptr<CompanionPort> self(new CompanionPort(status, std::move(handler)));
    CFMessagePortContext context{0, self.get(), nullptr, nullptr, nullptr};
    CFStringRef name =
        CFStringCreateWithCString(kCFAllocatorDefault, kCompanionPort, kCFStringEncodingUTF8);
    self->port_ = CFMessagePortCreateLocal(kCFAllocatorDefault, name, Receive, &context, nullptr);
    CFRelease(name);
    if (self->port_ == nullptr) {
        return nullptr;
    }
    self->source_ = CFMessagePortCreateRunLoopSource(kCFAllocatorDefault, self->port_, 0);
    CFRunLoopAddSource(CFRunLoopGetCurrent(), self->source_, kCFRunLoopDefaultMode);
    return self;
}

CompanionPort::~CompanionPort() {
    if (source_ != nullptr) {
        CFRunLoopRemoveSource(CFRunLoopGetCurrent(), source_, kCFRunLoopDefaultMode);
        CFRelease(source_);
    }
    if (port_ != nullptr) {
        CFMessagePortInvalidate(port_);
        CFRelease(port_);
    }
}

CFDataRef CompanionPort::Receive(CFMessagePortRef, SInt32 code, CFDataRef data, void* self) {
    auto& port = *static_cast<CompanionPort*>(self);
    std::span<const std::uint8_t> body;
    if (data != nullptr && CFDataGetLength(data) > 0) {
        body = {CFDataGetBytePtr(data), static_cast<std::size_t>(CFDataGetLength(data))};
    }
    CFDataRef reply = nullptr;
    if (code == kStatusQuery) {
        const Bytes bytes = StatusReply(port.status_);
        reply = CFDataCreate(kCFAllocatorDefault, bytes.data(), static_cast<CFIndex>(bytes.size()));
    }
    port.handler_(DecodeMessage(code, body));
    return reply;
}

}  // namespace krt9
