#include "tools/Client.h"

#include "VEKCommon/Names.h"
#include "VEKCommon/OwnedReference.h"
#include "tools/Session.h"

namespace krt9ctl {

CFStringRef ReplyMode() {
    return CFSTR("krt9ctl.reply");
}

Answer Client::Send(const Request& request) {
    if (port_ && !CFMessagePortIsValid(port_.get())) {
        port_.reset();
    }
    if (!port_) {
        CheckSession();
        port_.reset(CFMessagePortCreateRemote(kCFAllocatorDefault, CFSTR(kDriverPortName)));
    }
    if (!port_) {
        return {kPortMissing, {}};
    }
    OwnedReference<CFDataRef> body;
    if (!request.body.empty()) {
        body.reset(CFDataCreate(kCFAllocatorDefault, request.body.data(),
                                static_cast<CFIndex>(request.body.size())));
    }
    CFDataRef received = nullptr;
    const SInt32 status = CFMessagePortSendRequest(port_.get(), request.code, body.get(), timeout_,
                                                   timeout_, ReplyMode(), &received);
    const OwnedReference<CFDataRef> reply(received);
    Answer answer{status, {}};
    if (reply) {
        const UInt8* bytes = CFDataGetBytePtr(reply.get());
        answer.reply.assign(bytes, bytes + CFDataGetLength(reply.get()));
    }
    return answer;
}

}  // namespace krt9ctl
