#include "platform/Variants/MidiFaults.h"

#include "platform/Variants/FaultPlan.h"

namespace platform_testing {

namespace {

FaultPlan<MidiCreation>& Plan() {
    static FaultPlan<MidiCreation> plan;
    return plan;
}

}  // namespace

void FailMidiCreation(MidiCreation kind, unsigned long nth) {
    Plan().Fail(kind, nth);
}

void ForgetMidiFaults() {
    Plan().Forget();
}

bool MidiCreationFails(MidiCreation kind) {
    return Plan().Fails(kind);
}

}  // namespace platform_testing
