// The part of Application Services that the driver calls: accessibility and Quartz events.
#pragma once

#include <ApplicationServices/AXConstants.h>
#include <ApplicationServices/AXError.h>
#include <ApplicationServices/AXUIElement.h>
#include <ApplicationServices/AXValue.h>
#include <ApplicationServices/CGEvent.h>
#include <ApplicationServices/CGEventTypes.h>
#include <CoreFoundation/CGGeometry.h>
#include <CoreFoundation/CoreFoundation.h>
#include <CoreServices/CoreServices.h>
