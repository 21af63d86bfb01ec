#include "platform/Variants/EventFaults.h"

#include "platform/Variants/FaultPlan.h"

namespace platform_testing {

namespace {

FaultPlan<EventCreation>& Plan() {
    static FaultPlan<EventCreation> plan;
    return plan;
}

}  // namespace

void FailEventCreation(EventCreation kind, unsigned long nth) {
    Plan().Fail(kind, nth);
}

void ForgetEventFaults() {
    Plan().Forget();
}

bool EventCreationFails(EventCreation kind) {
    return Plan().Fails(kind);
}

}  // namespace platform_testing
