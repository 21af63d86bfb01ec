// Entry points of a design with accessibility notifications. The editing application is polled
// instead and no AXObserver is created anywhere, so they do nothing.
#include "driver/CVEK_UserSpaceDriver.h"

void CVEK_UserSpaceDriver::ObserveFCPXElement(NSString* /*identifier*/, unsigned /*value*/,
                                              NSString* /*text*/) {}

void CVEK_UserSpaceDriver::ObserverCallbackEntry(AXObserverRef /*observer*/,
                                                 AXUIElementRef /*element*/,
                                                 CFStringRef /*notification*/, void* /*info*/) {}

void CVEK_UserSpaceDriver::ObserverDestroyedCallback(AXObserverRef /*observer*/,
                                                     AXUIElementRef /*element*/) {}

void CVEK_UserSpaceDriver::ObserverRowSelectCallback(AXObserverRef /*observer*/,
                                                     AXUIElementRef /*element*/) {}
