// The controller's status, as the companion knows it: the driver reads nothing from the hardware.

#include <CoreFoundation/CoreFoundation.h>
#include <syslog.h>

#include "VEKCommon/ByteBuffers.h"
#include "VEKCommon/MessageCodes.h"
#include "driver/CVEK_UserSpaceDriver.h"

namespace {

constexpr CFIndex kStatusWords = 7;
constexpr CFIndex kStatusSize = 4 * kStatusWords;  // bytes

}  // namespace

// Hardware input is deliberately dropped. Called on MIDI's own thread, so nothing here may touch
// the driver.
void CVEK_UserSpaceDriver::HardwareReadProcEntry(const MIDIPacketList*, void*, void*) {}

// Whatever goes wrong, the next tick asks again.
void CVEK_UserSpaceDriver::RequestKRTStatus() {
    CFDataRef reply = nullptr;
    SendMessage(kStus, nullptr, 0, true, &reply);
    if (reply == nullptr) {
        return;
    }
    const CFIndex length = CFDataGetLength(reply);
    if (length >= kStatusSize) {
        unsigned char status[kStatusSize];
        CFDataGetBytes(reply, CFRangeMake(0, kStatusSize), status);
        SetKRTStatus(status);
    } else if (length > 0 && length != loggedStatusLength) {
        // The companion is asked ten times a second: another reply of the same length would only
        // repeat the line.
        loggedStatusLength = length;
        syslog(LOG_EMERG, "controller status ignored: reply of %ld bytes, %ld are needed\n", length,
               kStatusSize);
    }
    CFRelease(reply);
}

// Only the first two words are kept.
void CVEK_UserSpaceDriver::SetKRTStatus(const unsigned char* reply) {
    statusReserved = 0;
    unitCount = static_cast<unsigned short>(UFromBuffer::GetLong(reply));
    channelCount = static_cast<unsigned short>(UFromBuffer::GetLong(reply + 4));
    statusValid = true;
}

bool CVEK_UserSpaceDriver::RequestConnectState() {
    return connectState;
}

unsigned short CVEK_UserSpaceDriver::GetUnitCount() {
    return sSelf != nullptr && sSelf->statusValid ? sSelf->unitCount : 0;
}

unsigned short CVEK_UserSpaceDriver::GetChannelCount() {
    return sSelf != nullptr && sSelf->statusValid ? sSelf->channelCount : 0;
}
