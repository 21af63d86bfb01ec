// The companion's port, in the process of the test: what the driver sends arrives while the
// run loop runs in the default mode.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <optional>
#include <vector>

namespace test_support {

using Bytes = std::vector<unsigned char>;

class Companion {
  public:
    struct Message {
        SInt32 code = 0;
        Bytes body;
    };

    Companion() {
        CFMessagePortContext context = {0, this, nullptr, nullptr, nullptr};
        port_ = CFMessagePortCreateLocal(nullptr, CFSTR("VEK_KRT9"), Receive, &context, nullptr);
        source_ = CFMessagePortCreateRunLoopSource(nullptr, port_, 0);
        CFRunLoopAddSource(CFRunLoopGetCurrent(), source_, kCFRunLoopDefaultMode);
    }
    ~Companion() {
        CFMessagePortInvalidate(port_);
        CFRelease(source_);
        CFRelease(port_);
    }
    Companion(const Companion&) = delete;
    Companion& operator=(const Companion&) = delete;

    std::optional<Bytes> reply;     // to every message; none: the callback has nothing to answer
    std::vector<Message> received;  // in order

  private:
    static CFDataRef Receive(CFMessagePortRef, SInt32 code, CFDataRef body, void* info) {
        auto& self = *static_cast<Companion*>(info);
        Bytes bytes;
        if (body != nullptr) {
            bytes.assign(CFDataGetBytePtr(body), CFDataGetBytePtr(body) + CFDataGetLength(body));
        }
        self.received.push_back({code, bytes});
        return self.reply ? CFDataCreate(kCFAllocatorDefault, self.reply->data(),
                                         static_cast<CFIndex>(self.reply->size()))
                          : nullptr;
    }

    CFMessagePortRef port_;
    CFRunLoopSourceRef source_;
};

}  // namespace test_support
