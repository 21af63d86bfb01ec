// The application in front.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace krt9ctl {

// What a scene contains of an application besides its windows. Texts are UTF-8.
struct ApplicationFacts {
    pid_t pid = -1;
    std::optional<std::string> bundleIdentifier;
    std::optional<std::string> shortVersion;  // of its bundle's information
    std::optional<std::string> signature;     // of its bundle's information
};

// Adds what the bundle with this path says of itself; nothing for a path without bundle.
void AddBundleFacts(const std::string& bundlePath, ApplicationFacts& facts);

// Nothing when no application is in front.
std::optional<ApplicationFacts> FrontApplication();

}  // namespace krt9ctl
