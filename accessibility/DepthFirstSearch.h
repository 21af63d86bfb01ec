// The walk that every search by identifier shares: depth-first, pre-order, first match in array
// order, to any depth.
//
// An element that is listed several times is searched each time it is met, since its children may
// have changed meanwhile. Only one that is on the way down to where it is met again, its own
// ancestor or its own child, is not searched there. An application whose groups list each other
// could make such a walk take time that grows exponentially with their number; therefore a search
// descends at most kMostRepeatedDescents times into elements that it has been in before, and from
// then on into those only that are new to it.
//
// The searches tell candidates apart, and narrate their progress, each in its own way; they fill in
// the steps below. Every step corresponds to a moment of a recursive search in which one level
// handles one array of children. The walk itself keeps its path on the heap, so depth costs no
// stack.
#pragma once

#include <ApplicationServices/ApplicationServices.h>
#include <CoreFoundation/CoreFoundation.h>

#include "VEKCommon/OwnedReference.h"

class DepthFirstSearch {
  public:
    // Where the attribute names of a search must hold these attributes.
    static constexpr CFIndex kRoleIndex = 0;
    static constexpr CFIndex kChildrenIndex = 1;

    static constexpr int kMostRepeatedDescents = 1000;

    // `attributeNames` are what is read of every child, in one exchange; they must outlive the
    // search.
    explicit DepthFirstSearch(CFArrayRef attributeNames) : attributeNames_(attributeNames) {}
    virtual ~DepthFirstSearch() = default;
    DepthFirstSearch(const DepthFirstSearch&) = delete;
    DepthFirstSearch& operator=(const DepthFirstSearch&) = delete;

    // The element that was sought, or null. `children` may be null and may hold anything.
    OwnedReference<AXUIElementRef> Find(CFArrayRef children);

  protected:
    // A level begins; it ends after its last child or, with `found`, as soon as the search is over.
    virtual void BeginLevel() = 0;
    virtual void EndLevel(bool found) = 0;

    // Before the attributes of the child at `index` are read.
    virtual void BeginChild(CFIndex index) = 0;

    // Whether `child` is the element sought. `role` is never null; `attributes` are its values.
    virtual bool IsSought(AXUIElementRef child, CFIndex index, CFStringRef role,
                          CFArrayRef attributes) = 0;

    // `element` is the result and retained as such; it stood at `index` of its level.
    virtual void Found(AXUIElementRef element, CFIndex index) = 0;

    // `role` is one whose children are searched; then how many there are, if they could be read.
    virtual void BeginDescent(CFStringRef role) = 0;
    virtual void ChildrenRead(CFIndex count) = 0;

    // The level below has found the element.
    virtual void FoundBelow() = 0;

  private:
    struct Walk;

    OwnedReference<AXUIElementRef> VisitChild(Walk& walk, AXUIElementRef child, CFIndex index);
    void Descend(Walk& walk, AXUIElementRef child, OwnedReference<CFArrayRef> attributes);
    void Unwind(Walk& walk);

    CFArrayRef attributeNames_;
};
