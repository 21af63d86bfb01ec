#include "tests/unit/CoreFoundation/MessagePort/Ports.h"

#include <ostream>

namespace message_port_test {

std::string Text(CFDataRef data) {
    return {reinterpret_cast<const char*>(CFDataGetBytePtr(data)),
            static_cast<std::size_t>(CFDataGetLength(data))};
}

CFDataRef MakeData(const std::string& text) {
    return CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(text.data()),
                        static_cast<CFIndex>(text.size()));
}

CFStringRef MakeName(const std::string& utf8) {
    return CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(utf8.data()),
                                   static_cast<CFIndex>(utf8.size()), kCFStringEncodingUTF8, false);
}

Server::Server(const std::string& name, Callback callback, CFRunLoopMode mode)
    : callback_(std::move(callback)) {
    const CFStringRef nameString = MakeName(name);
    CFMessagePortContext context{};
    context.info = this;
    port_ = CFMessagePortCreateLocal(kCFAllocatorDefault, nameString, Receive, &context, nullptr);
    CFRelease(nameString);
    if (port_ != nullptr) {
        source_ = CFMessagePortCreateRunLoopSource(kCFAllocatorDefault, port_, 0);
        CFRunLoopAddSource(CFRunLoopGetCurrent(), source_, mode);
    }
}

Server::~Server() {
    if (port_ != nullptr) {
        CFMessagePortInvalidate(port_);
        CFRelease(source_);
        CFRelease(port_);
    }
}

CFDataRef Server::Receive(CFMessagePortRef, SInt32 msgid, CFDataRef data, void* info) {
    auto& self = *static_cast<Server*>(info);
    ++self.requests_;
    const auto reply = self.callback_(msgid, Text(data));
    return reply ? MakeData(*reply) : nullptr;
}

std::optional<std::string> Echo(SInt32, const std::string& text) {
    return text;
}

Client::Client(const std::string& name) {
    const CFStringRef nameString = MakeName(name);
    port_ = CFMessagePortCreateRemote(kCFAllocatorDefault, nameString);
    CFRelease(nameString);
}

Client::~Client() {
    if (port_ != nullptr) {
        CFRelease(port_);
    }
}

Client::Outcome Client::Ask(const std::string& text, SInt32 msgid, double receiveTimeout,
                            CFRunLoopMode replyMode, double sendTimeout) const {
    const CFDataRef data = MakeData(text);
    CFDataRef reply = nullptr;
    const SInt32 result = CFMessagePortSendRequest(port_, msgid, data, sendTimeout, receiveTimeout,
                                                   replyMode, &reply);
    CFRelease(data);
    Outcome outcome{result, std::nullopt};
    if (reply != nullptr) {
        outcome.reply = Text(reply);
        CFRelease(reply);
    }
    return outcome;
}

SInt32 Client::Tell(const std::string& text, double sendTimeout, SInt32 msgid) const {
    const CFDataRef data = MakeData(text);
    const SInt32 result =
        CFMessagePortSendRequest(port_, msgid, data, sendTimeout, 0, nullptr, nullptr);
    CFRelease(data);
    return result;
}

void PrintTo(const Client::Outcome& outcome, std::ostream* stream) {
    *stream << "result " << outcome.result << ", ";
    if (outcome.reply) {
        *stream << "reply of " << outcome.reply->size() << " bytes \""
                << outcome.reply->substr(0, 80) << '"';
    } else {
        *stream << "no reply";
    }
}

void RunPasses(int count) {
    for (int i = 0; i < count; ++i) {
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
    }
}

}  // namespace message_port_test
