// What the front-application observer knows, set directly.
#pragma once

#include <sys/types.h>

namespace test_support {

struct FrontApplicationState {
    const char* bundleIdentifier = nullptr;  // UTF-8; null: none
    const char* shortVersion = nullptr;      // UTF-8; null: none
    pid_t process = -1;
};

void SetFrontApplication(const FrontApplicationState& state);

}  // namespace test_support
