// Named message ports of the log-in session.
#pragma once

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFDate.h>
#include <CoreFoundation/CFRunLoop.h>
#include <CoreFoundation/CFString.h>

using CFMessagePortRef = struct __CFMessagePort*;

enum : SInt32 {
    kCFMessagePortSuccess = 0,
    kCFMessagePortSendTimeout = -1,
    kCFMessagePortReceiveTimeout = -2,
    kCFMessagePortIsInvalid = -3,
    kCFMessagePortTransportError = -4,
    kCFMessagePortBecameInvalidError = -5,
};

struct CFMessagePortContext {
    CFIndex version;  // 0
    void* info;
    const void* (*retain)(const void* info);
    void (*release)(const void* info);
    CFStringRef (*copyDescription)(const void* info);
};

// `data` is valid only during the call. The port releases the returned data after sending it.
using CFMessagePortCallBack = CFDataRef (*)(CFMessagePortRef local, SInt32 msgid, CFDataRef data,
                                            void* info);
using CFMessagePortInvalidationCallBack = void (*)(CFMessagePortRef port, void* info);

extern "C" {

CFTypeID CFMessagePortGetTypeID(void);

// Null when another process serves the name. `shouldFreeInfo` may be null.
CFMessagePortRef CFMessagePortCreateLocal(CFAllocatorRef allocator, CFStringRef name,
                                          CFMessagePortCallBack callout,
                                          CFMessagePortContext* context, Boolean* shouldFreeInfo);

// Null when no process serves the name.
CFMessagePortRef CFMessagePortCreateRemote(CFAllocatorRef allocator, CFStringRef name);

CFRunLoopSourceRef CFMessagePortCreateRunLoopSource(CFAllocatorRef allocator,
                                                    CFMessagePortRef local, CFIndex order);

// Time-outs are seconds. With a null reply mode no reply is awaited; else the run loop runs in that
// mode until it is there, and *returnData (if not null) belongs to the caller.
SInt32 CFMessagePortSendRequest(CFMessagePortRef remote, SInt32 msgid, CFDataRef data,
                                CFTimeInterval sendTimeout, CFTimeInterval rcvTimeout,
                                CFStringRef replyMode, CFDataRef* returnData);

void CFMessagePortInvalidate(CFMessagePortRef port);
Boolean CFMessagePortIsValid(CFMessagePortRef port);
CFStringRef CFMessagePortGetName(CFMessagePortRef port);
void CFMessagePortSetInvalidationCallBack(CFMessagePortRef port,
                                          CFMessagePortInvalidationCallBack callout);

}  // extern "C"
