// Sends the driver's messages to the companion.

#include <CoreFoundation/CoreFoundation.h>
#include <syslog.h>

#include "VEKCommon/OwnedReference.h"
#include "VEKCommon/Signposts.h"
#include "driver/CVEK_UserSpaceDriver.h"

namespace {

constexpr SInt32 kNoCompanion = -2;
constexpr double kPatience = 0.01;  // seconds, for sending and for the reply each

}  // namespace

SInt32 CVEK_UserSpaceDriver::SendMessage(int msgid, unsigned char* bytes, unsigned long long length,
                                         bool wantReply, CFDataRef* reply) {
    SignpostMessageBegins(msgid, length);
    if (remotePort == nullptr || !remotePort->IsValid()) {
        syslog(LOG_EMERG, "SendMessage no remote port (%p) or remote port invalid",
               static_cast<void*>(remotePort));
        SignpostMessageEnds(msgid, kNoCompanion);
        return kNoCompanion;
    }
    const OwnedReference<CFDataRef> data(
        CFDataCreate(kCFAllocatorDefault, bytes, static_cast<CFIndex>(length)));
    const SInt32 status = wantReply && reply != nullptr
                              ? remotePort->SendRequest(msgid, data.get(), kPatience, kPatience,
                                                        kCFRunLoopDefaultMode, *reply)
                              : remotePort->SendRequest(msgid, data.get(), kPatience, 0.0);
    SignpostMessageEnds(msgid, status);
    return status;
}
