// What can happen in the session while a request is in progress.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/adversary/ExpectedDriver.h"
#include "tests/support/ScriptedDesktop.h"

namespace adversary {

using test_support::ScriptedDesktop;

// Something that happens in the session at one moment of a request.
struct Event {
    std::string name;
    std::function<void(ScriptedDesktop& desktop, const std::string& control)> happen;
    bool concernsControl = false;  // else it is the same for every control

    std::string end = {};  // the command that takes it back, if there is one

    // What the driver knows to be in front once it has heard of it.
    ExpectedDriver::Front frontAfterwards = {501, true, true};
};
std::vector<Event> AllEvents();

// A replacement for the true reply to one exchange.
struct FalseReply {
    std::string name;
    std::function<void(std::optional<desktop_link::Reply>& reply)> falsify;
};
std::vector<FalseReply> AllFalseReplies();

// A replacement for one value that was read, given the request for it.
struct FalseValue {
    std::string name;
    std::function<desktop_link::Value(const desktop_link::Request& request)> make;
};
std::vector<FalseValue> AllFalseValues();

}  // namespace adversary
