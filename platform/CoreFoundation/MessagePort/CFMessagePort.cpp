#include <CoreFoundation/CFMessagePort.h>

#include "platform/CoreFoundation/MessagePort/LocalPort.h"
#include "platform/CoreFoundation/MessagePort/MessageData.h"
#include "platform/CoreFoundation/MessagePort/RemotePort.h"

using core_foundation::Implementation;
using message_port::LocalPort;
using message_port::Port;
using message_port::RemotePort;
using message_port::Retained;

namespace {

// Returns a reference that the caller owns.
template <typename T>
CFMessagePortRef HandOver(const Retained<T>& port) {
    return port ? port.HandOver()->Ref() : nullptr;
}

}  // namespace

CFTypeID CFMessagePortGetTypeID(void) {
    static const CFTypeID type = core_foundation::RegisterType("CFMessagePort");
    return type;
}

CFMessagePortRef CFMessagePortCreateLocal(CFAllocatorRef, CFStringRef name,
                                          CFMessagePortCallBack callout,
                                          CFMessagePortContext* context, Boolean* shouldFreeInfo) {
    if (shouldFreeInfo != nullptr) {
        *shouldFreeInfo = true;
    }
    // An invalid name leaves the port without a name.
    const std::string registeredName = message_port::RegisteredName(name).value_or("");
    if (const Retained<LocalPort> existing = LocalPort::Find(registeredName)) {
        return HandOver(existing);
    }
    const Retained<LocalPort> port = LocalPort::Create(registeredName, callout, context);
    if (port && shouldFreeInfo != nullptr) {
        *shouldFreeInfo = false;
    }
    return HandOver(port);
}

CFMessagePortRef CFMessagePortCreateRemote(CFAllocatorRef, CFStringRef name) {
    const auto registeredName = message_port::RegisteredName(name);
    return registeredName ? HandOver(RemotePort::FindOrConnect(*registeredName)) : nullptr;
}

CFRunLoopSourceRef CFMessagePortCreateRunLoopSource(CFAllocatorRef, CFMessagePortRef local,
                                                    CFIndex order) {
    auto& port = Implementation<Port>(local, __func__);
    if (port.IsRemote() || !port.IsValid()) {
        return nullptr;
    }
    return static_cast<LocalPort&>(port).CreateSource(order);
}

SInt32 CFMessagePortSendRequest(CFMessagePortRef remote, SInt32 msgid, CFDataRef data,
                                CFTimeInterval sendTimeout, CFTimeInterval rcvTimeout,
                                CFStringRef replyMode, CFDataRef* returnData) {
    auto& port = Implementation<Port>(remote, __func__);
    if (!port.IsRemote()) {
        core_foundation::Stop(__func__, "the port is not remote");
    }
    auto& remotePort = static_cast<RemotePort&>(port);
    const auto bytes = message_port::BytesOf(data);
    if (replyMode == nullptr) {
        return remotePort.Send(msgid, bytes, sendTimeout);
    }
    return remotePort.Exchange(msgid, bytes, sendTimeout, rcvTimeout, replyMode, returnData);
}

// Null is accepted.
void CFMessagePortInvalidate(CFMessagePortRef ms) {
    if (ms != nullptr) {
        Implementation<Port>(ms, __func__).Invalidate();
    }
}

Boolean CFMessagePortIsValid(CFMessagePortRef ms) {
    return Implementation<Port>(ms, __func__).IsValid();
}

CFStringRef CFMessagePortGetName(CFMessagePortRef ms) {
    return Implementation<Port>(ms, __func__).Name();
}

void CFMessagePortSetInvalidationCallBack(CFMessagePortRef ms,
                                          CFMessagePortInvalidationCallBack callout) {
    Implementation<Port>(ms, __func__).SetInvalidationCallBack(callout);
}
