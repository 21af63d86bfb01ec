// What a search does, step by step: for diagnosis, when a caller asks for it.
#pragma once

#include <ApplicationServices/ApplicationServices.h>
#include <CoreFoundation/CoreFoundation.h>

#include "accessibility/calls/CallResult.h"

// Every step corresponds to a moment of a recursive search in which one level handles one array of
// children. A trace overrides the steps that it has a line for.
class SearchTrace {
  public:
    SearchTrace() = default;
    virtual ~SearchTrace() = default;
    SearchTrace(const SearchTrace&) = delete;
    SearchTrace& operator=(const SearchTrace&) = delete;

    // The children of the window at `index` have been read and are searched next; with a failure,
    // they could not be read.
    virtual void WindowRead(CFIndex /*index*/, const CallFailure* /*failure*/) {}

    // A level begins; it ends after its last child or, with `found`, as soon as the search is over.
    virtual void LevelBegins() {}
    virtual void LevelEnds(bool /*found*/) {}

    // Before the attributes of the child at `index` are read.
    virtual void ChildBegins(CFIndex /*index*/) {}

    // Whether the child's role is one of those sought; `values` are its attributes.
    virtual void RoleChecked(CFStringRef /*role*/, bool /*taken*/, CFArrayRef /*values*/) {}

    // Whether its identifier, which may be null, is the one sought.
    virtual void IdentifierChecked(CFStringRef /*identifier*/, bool /*same*/, CFIndex /*index*/) {}

    // `element` is the result, already retained; it was found at `index` of its level.
    virtual void Found(AXUIElementRef /*element*/, CFIndex /*index*/) {}

    // The search goes on to the children of an element of that role; then, if they could be read,
    // how many there are.
    virtual void DescentBegins(CFStringRef /*role*/) {}
    virtual void ChildrenRead(CFIndex /*count*/) {}

    // The level below has found the element.
    virtual void FoundBelow() {}
};

// Logs the lines of the search from the windows; `level` is the depth from which it counts.
class TraceFromWindows : public SearchTrace {
  public:
    TraceFromWindows(CFStringRef identifier, CFStringRef role, unsigned level)
        : identifier_(identifier), role_(role), level_(level) {}

    void LevelBegins() override;
    void LevelEnds(bool found) override;
    void ChildBegins(CFIndex index) override;
    void RoleChecked(CFStringRef role, bool taken, CFArrayRef values) override;
    void IdentifierChecked(CFStringRef identifier, bool same, CFIndex index) override;
    void Found(AXUIElementRef element, CFIndex index) override;
    void DescentBegins(CFStringRef role) override;
    void ChildrenRead(CFIndex count) override;
    void FoundBelow() override;

  private:
    CFStringRef identifier_;
    CFStringRef role_;
    unsigned level_;
};

// Logs the lines of the search in an array.
class TraceInArray : public SearchTrace {
  public:
    explicit TraceInArray(CFStringRef identifier) : identifier_(identifier) {}

    void LevelBegins() override;
    void LevelEnds(bool found) override;
    void RoleChecked(CFStringRef role, bool taken, CFArrayRef values) override;
    void IdentifierChecked(CFStringRef identifier, bool same, CFIndex index) override;
    void DescentBegins(CFStringRef role) override;
    void ChildrenRead(CFIndex count) override;
    void FoundBelow() override;

  private:
    CFStringRef identifier_;
};
