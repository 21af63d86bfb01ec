#include "tests/unit/protocol/FakeMessagePort.h"

namespace fake_message_port {

Ports& ThePorts() {
    static Ports ports;
    return ports;
}

namespace {

std::string TextOf(CFStringRef string) {
    char text[256] = "";
    CFStringGetCString(string, text, sizeof text, kCFStringEncodingUTF8);
    return text;
}

template <class Object>
Object Noted(Object object) {
    ThePorts().objects.push_back(CFRetain((CFTypeRef)object));
    return object;
}

// Any object serves as a port: the driver only passes it back and releases it.
CFMessagePortRef NewPort(CFStringRef name) {
    return ThePorts().makesNone
               ? nullptr
               : Noted((CFMessagePortRef)CFStringCreateMutableCopy(nullptr, 0, name));
}

}  // namespace

}  // namespace fake_message_port

using namespace fake_message_port;

extern "C" {

CFMessagePortRef CFMessagePortCreateLocal(CFAllocatorRef allocator, CFStringRef name,
                                          CFMessagePortCallBack callout,
                                          CFMessagePortContext* context, Boolean* shouldFreeInfo) {
    ThePorts().calls.push_back("local " + TextOf(name));
    ThePorts().created.push_back({true, allocator, TextOf(name), callout,
                                  context == nullptr ? std::nullopt : std::optional(*context),
                                  shouldFreeInfo});
    return NewPort(name);
}

CFMessagePortRef CFMessagePortCreateRemote(CFAllocatorRef allocator, CFStringRef name) {
    ThePorts().calls.push_back("remote " + TextOf(name));
    ThePorts().created.push_back({false, allocator, TextOf(name), nullptr, std::nullopt, nullptr});
    return NewPort(name);
}

void CFMessagePortSetInvalidationCallBack(CFMessagePortRef,
                                          CFMessagePortInvalidationCallBack callout) {
    ThePorts().calls.push_back("set invalidation callback");
    ThePorts().invalidationCallbacks.push_back(callout);
}

CFRunLoopSourceRef CFMessagePortCreateRunLoopSource(CFAllocatorRef allocator, CFMessagePortRef port,
                                                    CFIndex order) {
    ThePorts().calls.push_back("source with order " + std::to_string(order) +
                               (allocator == nullptr ? "" : " and an allocator"));
    CFRunLoopSourceContext context = {};
    return ThePorts().sources[port] = Noted(CFRunLoopSourceCreate(nullptr, order, &context));
}

SInt32 CFMessagePortSendRequest(CFMessagePortRef remote, SInt32 msgid, CFDataRef data,
                                CFTimeInterval sendTimeout, CFTimeInterval rcvTimeout,
                                CFStringRef replyMode, CFDataRef* returnData) {
    Sent sent = {remote,     msgid,     std::nullopt,         sendTimeout,
                 rcvTimeout, replyMode, returnData != nullptr};
    if (data != nullptr) {
        const unsigned char* const start = CFDataGetBytePtr(data);
        sent.body.emplace(start, start + CFDataGetLength(data));
    }
    ThePorts().sent.push_back(sent);
    if (returnData != nullptr && ThePorts().reply != nullptr) {
        *returnData = (CFDataRef)CFRetain(ThePorts().reply);
    }
    return ThePorts().status;
}

void CFMessagePortInvalidate(CFMessagePortRef port) {
    ThePorts().calls.push_back("invalidate");
    if (const auto source = ThePorts().sources.find(port); source != ThePorts().sources.end()) {
        CFRunLoopSourceInvalidate(source->second);
    }
}

}  // extern "C"
