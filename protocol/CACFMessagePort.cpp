#include "protocol/CACFMessagePort.h"

CACFLocalMessagePort::CACFLocalMessagePort(CFStringRef name, CFMessagePortCallBack callback,
                                           CFMessagePortInvalidationCallBack invalidated,
                                           void* info) {
    CFMessagePortContext context = {0, info, nullptr, nullptr, nullptr};
    port_ = CFMessagePortCreateLocal(nullptr, name, callback, &context, nullptr);
    if (port_ == nullptr) {
        return;
    }
    if (invalidated != nullptr) {
        CFMessagePortSetInvalidationCallBack(port_, invalidated);
    }
    source_ = CFMessagePortCreateRunLoopSource(nullptr, port_, 0);
}

CACFLocalMessagePort::~CACFLocalMessagePort() {
    if (port_ != nullptr) {
        CFMessagePortInvalidate(port_);
        CFRelease(port_);
    }
    if (source_ != nullptr) {
        CFRelease(source_);
    }
}

CACFRemoteMessagePort::CACFRemoteMessagePort(CFStringRef name,
                                             CFMessagePortInvalidationCallBack invalidated) {
    port_ = CFMessagePortCreateRemote(nullptr, name);
    if (port_ == nullptr) {
        return;
    }
    if (invalidated != nullptr) {
        CFMessagePortSetInvalidationCallBack(port_, invalidated);
    }
    source_ = CFMessagePortCreateRunLoopSource(nullptr, port_, 0);
}

CACFRemoteMessagePort::~CACFRemoteMessagePort() {
    if (port_ != nullptr) {
        CFRelease(port_);
    }
    if (source_ != nullptr) {
        CFRelease(source_);
    }
}

SInt32 CACFRemoteMessagePort::SendRequest(SInt32 msgid, CFDataRef data, double sendTimeout,
                                          double receiveTimeout, CFStringRef replyMode,
                                          CFDataRef& reply) const {
    return CFMessagePortSendRequest(port_, msgid, data, sendTimeout, receiveTimeout, replyMode,
                                    &reply);
}

SInt32 CACFRemoteMessagePort::SendRequest(SInt32 msgid, CFDataRef data, double sendTimeout,
                                          double receiveTimeout) const {
    return CFMessagePortSendRequest(port_, msgid, data, sendTimeout, receiveTimeout, nullptr,
                                    nullptr);
}
