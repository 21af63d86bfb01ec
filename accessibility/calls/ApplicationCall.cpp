#include "accessibility/calls/ApplicationCall.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "VEKCommon/OwnedReference.h"

namespace {

// A call that fails after this part of the time-out counts as timed out. The system measures the
// time-out by a clock of its own, and by this one it may end a little early.
constexpr double kNearlyAll = 0.9;

constinit CallTiming timing;
bool timeoutIsSet = false;

int operations = 0;                // in progress, one within the other
std::vector<pid_t> hungProcesses;  // found during them; few, if any
unsigned long callsMade = 0;

void SetTimeoutOfProcess() {
    const OwnedReference<AXUIElementRef> systemWide(AXUIElementCreateSystemWide());
    AXUIElementSetMessagingTimeout(systemWide.get(), timing.timeout);
    timeoutIsSet = true;
}

bool IsHung(pid_t process) {
    return std::find(hungProcesses.begin(), hungProcesses.end(), process) != hungProcesses.end();
}

}  // namespace

OneWait::OneWait() {
    ++operations;
}

OneWait::~OneWait() {
    if (--operations == 0) {
        hungProcesses.clear();
    }
}

CallTiming SetCallTiming(const CallTiming& newTiming) {
    timeoutIsSet = false;
    return std::exchange(timing, newTiming);
}

unsigned long CallsMade() {
    return callsMade;
}

MeasuredCall::MeasuredCall(AXUIElementRef element) {
    if (!timeoutIsSet) {
        SetTimeoutOfProcess();
    }
    AXUIElementGetPid(element, &process_);
    start_ = timing.now();
}

bool MeasuredCall::ProcessIsHung() const {
    return IsHung(process_);
}

void MeasuredCall::Ended(AXError error) {
    ++callsMade;
    const std::chrono::duration<double> taken = timing.now() - start_;
    if (operations > 0 && error == kAXErrorCannotComplete &&
        taken.count() >= kNearlyAll * timing.timeout) {
        hungProcesses.push_back(process_);
    }
}
