#import <Foundation/Foundation.h>

#include "driver/CVEK_UserSpaceDriver.h"

CFDataRef CVEK_UserSpaceDriver::MessageCallbackEntry(CFMessagePortRef port, SInt32 msgid,
                                                     CFDataRef data, void* info) {
    @autoreleasepool {
        return sSelf == nullptr ? nullptr : sSelf->MessageCallback(port, msgid, data, info);
    }
}
