// Message ports that a test describes: these functions replace the framework's in the
// test program and note every argument they are given.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace fake_message_port {

struct Created {
    bool local = false;
    CFAllocatorRef allocator = nullptr;
    std::string name;
    CFMessagePortCallBack callback = nullptr;
    std::optional<CFMessagePortContext> context;
    Boolean* shouldFreeInfo = nullptr;
};

struct Sent {
    CFMessagePortRef port = nullptr;
    SInt32 code = 0;
    std::optional<std::vector<unsigned char>> body;  // none: the data was null
    double sendTimeout = 0;                          // seconds
    double receiveTimeout = 0;                       // seconds
    CFStringRef replyMode = nullptr;
    bool hasPlaceForReply = false;
};

// What happened to the ports, in order, as a text each.
struct Ports {
    bool makesNone = false;
    SInt32 status = 0;          // of every send
    CFDataRef reply = nullptr;  // of every send that has a place for it; retained for the caller
    std::vector<Created> created;
    std::vector<CFMessagePortInvalidationCallBack> invalidationCallbacks;
    std::vector<Sent> sent;
    std::vector<std::string> calls;
    std::map<CFMessagePortRef, CFRunLoopSourceRef> sources;
    std::vector<CFTypeRef> objects;  // ports and sources that were made, retained once more
};

Ports& ThePorts();

}  // namespace fake_message_port
