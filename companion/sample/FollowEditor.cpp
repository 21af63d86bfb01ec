// A companion in 40 lines: prints what the editor shows, and switches its snapping on.
#include <cstdio>

#include "companion/KRT9Companion.h"

namespace {

constexpr krt9::Element kSnapping = 171;

void SwitchSnappingOn(krt9::Driver& driver) {
    const auto snapping = driver.Value(kSnapping);
    if (!snapping) {
        std::printf("snapping cannot be read\n");
    } else if (*snapping == 0) {
        driver.Press(kSnapping);
        std::printf("snapping is switched on: %d\n", driver.Value(kSnapping).value.value_or(0));
    }
}

}  // namespace

int main() {
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    krt9::Driver driver;
    const auto print = [&driver](const krt9::Message& message) {
        if (message.kind == krt9::MessageKind::language) {  // the driver has started
            std::printf("language: %s\n", message.text.c_str());
            driver.RefreshAndObserve({.frontApplication = true, .timecode = true, .clip = true});
            SwitchSnappingOn(driver);
        } else if (message.kind == krt9::MessageKind::clip) {
            std::printf("clip: %s\n", message.text.c_str());
        } else if (message.kind == krt9::MessageKind::timecode) {
            std::printf("timecode: %s\n", message.text.c_str());
        }
    };
    const auto port = krt9::CompanionPort::Open({.units = 1, .channels = 8}, print);
    if (!port) {
        std::printf("another companion runs\n");
        return 1;
    }
    std::printf("start the driver now\n");
    CFRunLoopRun();
    return 0;
}
