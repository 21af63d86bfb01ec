// Tells, line by line, what a search does: for diagnosis, and only if somebody asks for it.
#pragma once

#include <ApplicationServices/ApplicationServices.h>
#include <CoreFoundation/CoreFoundation.h>

// Every step corresponds to a moment of a recursive search in which one level handles one array of
// children. A trace says what it has a line for, and nothing at the other steps.
class SearchTrace {
  public:
    SearchTrace() = default;
    virtual ~SearchTrace() = default;
    SearchTrace(const SearchTrace&) = delete;
    SearchTrace& operator=(const SearchTrace&) = delete;

    // A level begins; it ends after its last child or, with `found`, as soon as the search is over.
    virtual void LevelBegins() {}
    virtual void LevelEnds(bool /*found*/) {}

    // Before the attributes of the child at `index` are read.
    virtual void ChildBegins(CFIndex /*index*/) {}

    // Whether the child can be the element sought, by its role; `values` are its attributes.
    virtual void RoleChecked(CFStringRef /*role*/, bool /*taken*/, CFArrayRef /*values*/) {}

    // Whether it is, by its identifier, which may be null.
    virtual void IdentifierChecked(CFStringRef /*identifier*/, bool /*same*/, CFIndex /*index*/) {}

    // `element` is the result and retained as such; it stood at `index` of its level.
    virtual void Found(AXUIElementRef /*element*/, CFIndex /*index*/) {}

    // The children of an element of that role are searched; then how many there are, if they could
    // be read.
    virtual void DescentBegins(CFStringRef /*role*/) {}
    virtual void ChildrenRead(CFIndex /*count*/) {}

    // The level below has found the element.
    virtual void FoundBelow() {}
};

// The lines of the search from the windows; `level` is the depth from which it counts.
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

// The lines of the search in an array.
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
