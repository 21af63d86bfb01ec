// The scenarios of tests/data/corefoundation/cfrunloop.json, each on the loop of the main thread or
// on that of a second thread, as the case says.
#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <thread>

#include "tests/support/Paths.h"
#include "tests/unit/CoreFoundation/RunLoop/Scenarios.h"

namespace run_loop_test {

std::string NameOf(CFRunLoopRunResult result) {
    switch (result) {
        case kCFRunLoopRunFinished:
            return "finished";
        case kCFRunLoopRunStopped:
            return "stopped";
        case kCFRunLoopRunTimedOut:
            return "timedOut";
        case kCFRunLoopRunHandledSource:
            return "handledSource";
    }
    return "unknown result " + std::to_string(result);
}

namespace {

constexpr char kNoNewDate[] =
    "CFRunLoopTimerSetNextFireDate is not part of this layer: the driver's timer keeps its grid";

// Scenarios that cannot be played, and why.
const std::map<std::string, std::string> kLeftOut = {
    {"next-timer-date", "CFRunLoopGetNextTimerFireDate is not part of this layer"},
    {"set-next-fire-date", kNoNewDate},
    {"set-next-fire-date-oneshot", kNoNewDate},
};

// Fields of results that come from functions which are not part of this layer.
const std::set<std::pair<std::string, std::string>> kFieldsLeftOut = {
    {"negative-interval", "repeats"},                // CFRunLoopTimerDoesRepeat
    {"timer-info", "repeats"},                       // CFRunLoopTimerDoesRepeat
    {"timer-info", "order"},                         // CFRunLoopTimerGetOrder
    {"timer-info", "context_version"},               // CFRunLoopTimerGetContext
    {"source-signal-before-add", "signalled"},       // CFRunLoopSourceIsSignalled
    {"source-signal-before-add", "signalled_after"}  // CFRunLoopSourceIsSignalled
};

std::vector<Result> Cases() {
    std::ifstream file(KRT9_TEST_DATA "/corefoundation/cfrunloop.json");
    const Result document = Result::parse(file, nullptr, false);
    return document.is_object() ? document.at("cases").get<std::vector<Result>>()
                                : std::vector<Result>{};
}

// The case's id without the "-main" or "-thread" at its end.
std::string ScenarioName(const Result& vector) {
    const std::string id = vector.at("id");
    return id.substr(0, id.rfind('-'));
}

std::function<Result()> FindScenario(const std::string& name) {
    for (const auto* scenarios :
         {&ModeScenarios(), &RunScenarios(), &StopScenarios(), &TimerScenarios(),
          &SourceScenarios(), &NestingScenarios(), &ObserverScenarios()}) {
        if (const auto found = scenarios->find(name); found != scenarios->end()) {
            return found->second;
        }
    }
    return nullptr;
}

class RunLoopVector : public testing::TestWithParam<Result> {};

TEST_P(RunLoopVector, GivesTheMeasuredResult) {
    const std::string name = ScenarioName(GetParam());
    if (const auto reason = kLeftOut.find(name); reason != kLeftOut.end()) {
        GTEST_SKIP() << reason->second;
    }
    const auto scenario = FindScenario(name);
    ASSERT_TRUE(scenario) << "no scenario is named " << name;
    Result result;
    if (GetParam().at("input").at("run_loop_of") == "main thread") {
        result = scenario();
    } else {
        std::thread([&] { result = scenario(); }).join();
    }
    for (const auto& [field, expected] : GetParam().at("result").items()) {
        if (!kFieldsLeftOut.contains({name, field})) {
            EXPECT_EQ(result.value(field, Result("no such field")), expected)
                << field << " of: " << GetParam().at("input").at("scenario");
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Reference, RunLoopVector, testing::ValuesIn(Cases()),
                         [](const auto& info) {
                             std::string name = info.param.at("id");
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST(RunLoopVectors, AreThere) {
    EXPECT_EQ(Cases().size(), 105U) << "in " << KRT9_TEST_DATA << "/corefoundation/cfrunloop.json";
}

}  // namespace
}  // namespace run_loop_test
