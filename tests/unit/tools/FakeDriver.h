// A driver in the test's own process: replies to requests over the real ports.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "VEKCommon/OwnedReference.h"
#include "tools/Client.h"

namespace krt9ctl {

// Replies while the client waits: its source is in the mode in which the client waits.
class FakeDriver {
  public:
    using Reply = std::function<CFDataRef(const Request&)>;

    explicit FakeDriver(Reply reply, CFStringRef mode = ReplyMode()) : reply_(std::move(reply)) {
        CFMessagePortContext context{0, this, nullptr, nullptr, nullptr};
        port_.reset(CFMessagePortCreateLocal(kCFAllocatorDefault, CFSTR("KRT9Background"), Receive,
                                             &context, nullptr));
        source_.reset(CFMessagePortCreateRunLoopSource(kCFAllocatorDefault, port_.get(), 0));
        CFRunLoopAddSource(CFRunLoopGetCurrent(), source_.get(), mode);
    }
    ~FakeDriver() { CFMessagePortInvalidate(port_.get()); }
    FakeDriver(const FakeDriver&) = delete;
    FakeDriver& operator=(const FakeDriver&) = delete;

    void End() { CFMessagePortInvalidate(port_.get()); }

    std::vector<std::string> received;  // code and body as hex digits

  private:
    static CFDataRef Receive(CFMessagePortRef, SInt32 code, CFDataRef data, void* driver) {
        auto& self = *static_cast<FakeDriver*>(driver);
        Request request{code, {}};
        if (data != nullptr) {
            const UInt8* bytes = CFDataGetBytePtr(data);
            request.body.assign(bytes, bytes + CFDataGetLength(data));
        }
        self.received.push_back(FormatCode(code) + " " + FormatHex(request.body));
        return self.reply_(request);
    }

    Reply reply_;
    OwnedReference<CFMessagePortRef> port_;
    OwnedReference<CFRunLoopSourceRef> source_;
};

inline CFDataRef Nothing(const Request&) {
    return nullptr;
}

inline FakeDriver::Reply Always(Bytes bytes) {
    return [bytes](const Request&) {
        return CFDataCreate(kCFAllocatorDefault, bytes.data(), static_cast<CFIndex>(bytes.size()));
    };
}

}  // namespace krt9ctl
