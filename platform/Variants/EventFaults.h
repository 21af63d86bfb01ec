// Lets a test make the creation of Quartz events fail, which on a real system happens only when it
// runs short.
#pragma once

namespace platform_testing {

enum class EventCreation { source, empty, keyboard, mouse, scroll };

// The n-th creation of that kind from now on (1: the next one) returns null. Failures add up until
// ForgetEventFaults().
void FailEventCreation(EventCreation kind, unsigned long nth);

void ForgetEventFaults();

// For the creators: whether this creation is to fail. Counts it.
bool EventCreationFails(EventCreation kind);

}  // namespace platform_testing
