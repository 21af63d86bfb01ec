// Takes the language tag of the bundle that this program lies in, as the driver does on a tick, and
// prints the result, the kept tag and what a companion in this process received. With an argument
// there is no companion.
#include <cstdio>
#include <optional>

#include "VEKCommon/MessageCodes.h"
#include "platform/Testing/LiveObjects.h"
#include "tests/support/Companion.h"
#include "tests/support/DriverInspector.h"
#include "tests/support/TestDriver.h"

namespace {

// Messages arrive in the order of their sending: when the last of all is there, so is the tag's.
void LetArrive(CVEK_UserSpaceDriver& driver, const test_support::Companion& companion) {
    driver.SendMessage(kStus, nullptr, 0, false, nullptr);
    while (companion.received.empty() || companion.received.back().code != kStus) {
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1, true);
    }
}

void Print(const test_support::Companion::Message& message) {
    std::printf(" %s:", message.code == kJSLg ? "JSLg" : "end");
    for (const unsigned char byte : message.body) {
        std::printf("%02x", byte);
    }
}

}  // namespace

int main(int argc, char**) {
    const platform_testing::AutoreleasePool pool;
    std::optional<test_support::Companion> companion;
    if (argc == 1) {
        companion.emplace();
    }
    test_support::TestDriver driver;
    const bool answer = driver->GetLocale();
    std::printf("%s [%s]", answer ? "true" : "false", DriverInspector::Language(*driver));
    if (companion) {
        LetArrive(*driver, *companion);
        for (const auto& message : companion->received) {
            Print(message);
        }
    }
    std::printf("\n");
    return 0;
}
