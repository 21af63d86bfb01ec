// The reference scenarios of the run loop, each played on the loop of the calling thread. The
// answer has the fields of the scenario's result.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <string>

namespace run_loop_test {

using Result = nlohmann::json;
using Scenarios = std::map<std::string, std::function<Result()>>;  // by the scenario's name

const Scenarios& ModeScenarios();
const Scenarios& RunScenarios();
const Scenarios& StopScenarios();
const Scenarios& TimerScenarios();
const Scenarios& SourceScenarios();
const Scenarios& NestingScenarios();
const Scenarios& ObserverScenarios();

std::string NameOf(CFRunLoopRunResult result);

}  // namespace run_loop_test
