// Takes the language tag of the bundle that this program lies in, as the driver does on a tick, and
// prints the result, the kept tag and what a companion in this process received. With an argument
// there is no companion.
#include <cstdio>
#include <exception>
#include <optional>

#include "VEKCommon/MessageCodes.h"
#include "platform/Testing/LiveObjects.h"
#include "scenes/notation/Hex.h"
#include "tests/support/Codes.h"
#include "tests/support/Companion.h"
#include "tests/support/DriverInspector.h"
#include "tests/support/SentMessages.h"
#include "tests/support/TestDriver.h"

namespace {

void Print(const test_support::Companion::Message& message) {
    std::printf(" %s:%s", test_support::CodeText(message.code).c_str(),
                scene_notation::FormatHex(message.body).c_str());
}

}  // namespace

int main(int argc, char**) try {
    const platform_testing::AutoreleasePool pool;
    std::optional<test_support::Companion> companion;
    if (argc == 1) {
        companion.emplace();
    }
    test_support::TestDriver driver;
    const bool answer = driver->GetLocale();
    std::printf("%s [%s]", answer ? "true" : "false", DriverInspector::Language(*driver));
    if (companion) {
        for (const auto& message : test_support::TakeSent(*driver, *companion)) {
            Print(message);
        }
    }
    std::printf("\n");
    return 0;
} catch (const std::exception& problem) {
    std::fprintf(stderr, "%s\n", problem.what());
    return 1;
}
