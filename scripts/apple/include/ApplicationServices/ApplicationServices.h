// What tests for macOS alone call besides what platform/ has; by the public documentation.
#pragma once

#include_next <ApplicationServices/ApplicationServices.h>

extern "C" CGEventFlags CGEventSourceFlagsState(CGEventSourceStateID stateID);
