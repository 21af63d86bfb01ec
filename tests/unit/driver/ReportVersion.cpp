// Prints the version that a driver keeps of the bundle that this program lies in.
#include <cstdio>

#include "platform/Testing/LiveObjects.h"
#include "tests/support/DriverInspector.h"
#include "tests/support/TestDriver.h"

int main() {
    const platform_testing::AutoreleasePool pool;
    test_support::TestDriver driver;
    std::fputs(DriverInspector::VersionString(*driver), stdout);
    return 0;
}
