#include "platform/CoreFoundation/MessagePort/Port.h"

#include <mutex>
#include <utility>

namespace message_port {

// The link from a source to its port; cut when the port's last reference is released.
struct Port::Link {
    std::mutex mutex;
    Port* port;
};

Port::Port(std::string registeredName)
    : registeredName_(std::move(registeredName)), link_(std::make_shared<Link>()) {
    link_->port = this;
    if (!registeredName_.empty()) {
        name_ = CFStringCreateWithCString(kCFAllocatorDefault, registeredName_.c_str(),
                                          kCFStringEncodingUTF8);
    }
}

Port::~Port() {
    if (name_ != nullptr) {
        CFRelease(name_);
    }
}

void Port::Finalize() {
    {
        const std::lock_guard lock(link_->mutex);
        link_->port = nullptr;
    }
    Invalidate();
}

void Port::Invalidate() {
    if (!valid_.exchange(false)) {
        return;
    }
    const Retained<Port> alive(this);
    End();
    if (const auto callback = invalidated_.load()) {
        callback(Ref(), Info());
    }
    ReleaseInfo();
}

void Port::SetInvalidationCallBack(CFMessagePortInvalidationCallBack callback) {
    invalidated_ = callback;
    if (!valid_ && callback != nullptr) {
        callback(Ref(), Info());
    }
}

CFRunLoopSourceRef Port::CreateDescriptorSource(CFIndex order, run_loop::Presence presence) {
    return run_loop::CreateDescriptorSource(
        order, presence, [link = link_](int descriptor, std::uint32_t events) {
            Retained<Port> port;
            {
                const std::lock_guard lock(link->mutex);
                if (link->port != nullptr && link->port->TryRetain()) {
                    port = Retained<Port>::Adopt(link->port);
                }
            }
            return port && port->valid_ && port->Ready(descriptor, events);
        });
}

}  // namespace message_port
