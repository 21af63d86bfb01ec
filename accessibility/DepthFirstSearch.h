// The walk that every search by identifier shares: depth-first, pre-order, first match in array
// order, to any depth. Its path is on the heap, so depth costs no stack.
//
// An element that is listed several times is searched each time it is met, since its children may
// have changed meanwhile. Only one that is on the way down to where it is met again, its own
// ancestor or its own child, is not searched there. An application whose groups list each other
// could make such a walk take time that grows exponentially with their number; therefore a search
// descends at most kMostRepeatedDescents times into elements that it has been in before, and from
// then on into those only that are new to it.
#pragma once

#include <ApplicationServices/ApplicationServices.h>
#include <CoreFoundation/CoreFoundation.h>

#include "VEKCommon/OwnedReference.h"
#include "accessibility/ElementQuery.h"
#include "accessibility/SearchTrace.h"

constexpr int kMostRepeatedDescents = 1000;

// The element that was sought, or null. `children` may be null and may hold anything. One exchange
// for each child visited. `trace` is told each step; null for none.
OwnedReference<AXUIElementRef> FindElement(const ElementQuery& query, CFArrayRef children,
                                           SearchTrace* trace);
