// Owners of the two message ports: the one this process listens on and the companion's.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

class CACFLocalMessagePort {
  public:
    // When the port cannot be created, the object has neither a port nor a source.
    CACFLocalMessagePort(CFStringRef name, CFMessagePortCallBack callback,
                         CFMessagePortInvalidationCallBack invalidated, void* info);
    virtual ~CACFLocalMessagePort();  // invalidates the port
    CACFLocalMessagePort(const CACFLocalMessagePort&) = delete;
    CACFLocalMessagePort& operator=(const CACFLocalMessagePort&) = delete;

    CFRunLoopSourceRef GetRunLoopSource() const { return source_; }  // not retained for the caller

    // Whether the port was created, even if it has been invalidated since.
    bool IsValid() const { return port_ != nullptr; }

  private:
    CFMessagePortRef port_ = nullptr;
    CFRunLoopSourceRef source_ = nullptr;
};

class CACFRemoteMessagePort {
  public:
    // When no such port exists, the object has neither a port nor a source.
    CACFRemoteMessagePort(CFStringRef name, CFMessagePortInvalidationCallBack invalidated);
    virtual ~CACFRemoteMessagePort();  // releases the port without invalidating it
    CACFRemoteMessagePort(const CACFRemoteMessagePort&) = delete;
    CACFRemoteMessagePort& operator=(const CACFRemoteMessagePort&) = delete;

    // Whether the port existed at construction, even if it no longer does.
    bool IsValid() const { return port_ != nullptr; }

    // Return the status of CFMessagePortSendRequest unchanged. Time-outs are in seconds. On success
    // with a reply mode, the caller releases `reply`.
    SInt32 SendRequest(SInt32 msgid, CFDataRef data, double sendTimeout, double receiveTimeout,
                       CFStringRef replyMode, CFDataRef& reply) const;
    SInt32 SendRequest(SInt32 msgid, CFDataRef data, double sendTimeout,
                       double receiveTimeout) const;

  private:
    CFMessagePortRef port_ = nullptr;
    CFRunLoopSourceRef source_ = nullptr;  // never added to a run loop
};
