#include "tools/Delivery.h"

#include <CoreFoundation/CoreFoundation.h>

#include <array>

namespace krt9ctl {

namespace {

constexpr std::array kDeliveries{
    DeliveryRow{kCFMessagePortSuccess, ExitCode::ok, "the driver replied"},
    DeliveryRow{kPortMissing, ExitCode::noDriver, "no driver runs"},
    DeliveryRow{kCFMessagePortSendTimeout, ExitCode::timeOut,
                "the driver did not take the request in time; it may still take effect"},
    DeliveryRow{kCFMessagePortReceiveTimeout, ExitCode::timeOut,
                "the driver took the request but did not answer in time; it may still take effect"},
    DeliveryRow{kCFMessagePortIsInvalid, ExitCode::transport,
                "the driver's port is no longer valid: the driver has ended"},
    DeliveryRow{kCFMessagePortTransportError, ExitCode::transport,
                "the request could not be delivered to the driver"},
    DeliveryRow{kCFMessagePortBecameInvalidError, ExitCode::transport,
                "the driver ended before it answered"},
};

constexpr DeliveryRow kUnknown{0, ExitCode::transport,
                               "the message port reported an error that is not documented"};

}  // namespace

const DeliveryRow& DeliveryOf(std::int32_t status) {
    for (const DeliveryRow& row : kDeliveries) {
        if (row.status == status) {
            return row;
        }
    }
    return kUnknown;
}

}  // namespace krt9ctl
