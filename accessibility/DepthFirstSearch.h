// The walk that every search by identifier shares: depth-first, pre-order, first match in array
// order, to any depth. Its path is on the heap, so that depth does not use the stack.
//
// An element that is listed several times is searched each time it is met, since its children may
// have changed meanwhile. Only an element that is met again below itself, as its own descendant, is
// not searched there. An application whose groups list each other could make such a walk take time
// that grows exponentially with their number. Therefore a search descends at most
// kMostRepeatedDescents times into elements that it has been in before, and from then on only into
// elements that are new to it.
#pragma once

#include <ApplicationServices/ApplicationServices.h>
#include <CoreFoundation/CoreFoundation.h>

#include "VEKCommon/OwnedReference.h"
#include "accessibility/ElementQuery.h"
#include "accessibility/SearchTrace.h"

constexpr int kMostRepeatedDescents = 1000;

// The element sought, or null. `children` may be null and may hold objects of any type. Costs one
// exchange for each child visited. `trace` is told each step; it may be null.
OwnedReference<AXUIElementRef> FindElement(const ElementQuery& query, CFArrayRef children,
                                           SearchTrace* trace);

// The same in the children of each window, first match in the windows' order. One more exchange for
// each window; one whose children cannot be read is left out.
OwnedReference<AXUIElementRef> FindElementInWindows(const ElementQuery& query, CFArrayRef windows,
                                                    SearchTrace* trace);
