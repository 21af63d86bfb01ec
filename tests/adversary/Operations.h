// Everything that the driver does with the session around it, as a list.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/adversary/DriverUnderAttack.h"

namespace adversary {

struct DriverOperation {
    std::string name;  // letters and digits
    std::string scene;
    std::vector<std::string> controls;  // addresses of what it works on in that scene
    std::function<Outcome(DriverUnderAttack&)> run;
    std::function<Outcome(ExpectedDriver&, Replay&)> expect;
    std::string version = "10.4.6";
    bool keepsWhatItFinds = false;       // deliberately: its objects are never released
    std::optional<unsigned> clipSource;  // a tick with both observations that begins there
};

std::vector<DriverOperation> AllOperations();

// Where every scene has its controls: a group of the second of three windows.
inline const std::string kHolder = "/1/0/0";
inline const std::string kOtherApplication = "com.example.player";

}  // namespace adversary
