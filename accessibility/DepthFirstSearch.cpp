#include "accessibility/DepthFirstSearch.h"

#include <unordered_map>
#include <utility>
#include <vector>

#include "accessibility/calls/AccessibilityCalls.h"
#include "accessibility/calls/ElementAttributes.h"

namespace {

// Two objects for the same control are different pointers but equal, and hash alike.
struct ElementHash {
    std::size_t operator()(const OwnedReference<AXUIElementRef>& element) const {
        return CFHash(element.get());
    }
};

struct ElementEqual {
    bool operator()(const OwnedReference<AXUIElementRef>& a,
                    const OwnedReference<AXUIElementRef>& b) const {
        return CFEqual(a.get(), b.get());
    }
};

class Walk {
  public:
    Walk(const ElementQuery& query, SearchTrace* trace) : query_(query), trace_(trace) {}

    OwnedReference<AXUIElementRef> Find(CFArrayRef children) {
        BeginLevel({nullptr, children, 0, nullptr});
        while (!path_.empty()) {
            Level& level = path_.back();
            if (level.next >= CountOf(level.children)) {
                EndLevel(false);
                continue;
            }
            const CFIndex index = level.next++;
            Tell(&SearchTrace::ChildBegins, index);
            if (auto found = Visit(ElementAt(level.children, index), index)) {
                Tell(&SearchTrace::Found, found.get(), index);
                Unwind();
                return found;
            }
        }
        return nullptr;
    }

  private:
    struct Level {
        OwnedReference<CFArrayRef> owner;  // the attributes that hold `children`; null at the top
        CFArrayRef children;
        CFIndex next;  // index of the child to visit
        bool* onPath;  // of the element whose children these are, see Enter; null at the top
    };

    OwnedReference<AXUIElementRef> Visit(AXUIElementRef child, CFIndex index) {
        OwnedReference<CFArrayRef> values = CopyAttributes(child, query_.attributes);
        CFStringRef role = StringAt(values.get(), ElementQuery::kRoleIndex);
        if (role == nullptr) {
            return nullptr;
        }
        if (IsSought(role, values.get(), index)) {
            return Retained(child);
        }
        if (IsSearchedFurther(role)) {
            Tell(&SearchTrace::DescentBegins, role);
            Descend(child, std::move(values));
        }
        return nullptr;
    }

    bool IsSought(CFStringRef role, CFArrayRef values, CFIndex index) {
        const bool taken = query_.TakesRole(role) &&
                           !query_.Skips(role, StringAt(values, ElementQuery::kSubroleIndex));
        Tell(&SearchTrace::RoleChecked, role, taken, values);
        if (!taken) {
            return false;
        }
        CFStringRef identifier = StringAt(values, ElementQuery::kIdentifierIndex);
        const bool same = SameText(identifier, query_.identifier);
        Tell(&SearchTrace::IdentifierChecked, identifier, same, index);
        return same;
    }

    void Descend(AXUIElementRef child, OwnedReference<CFArrayRef> values) {
        CFArrayRef children = ArrayAt(values.get(), ElementQuery::kChildrenIndex);
        if (children == nullptr) {
            return;
        }
        Tell(&SearchTrace::ChildrenRead, CFArrayGetCount(children));
        bool* const onPath = Enter(child);
        if (onPath != nullptr) {
            BeginLevel({std::move(values), children, 0, onPath});
        }
    }

    // Records the descent into the element and returns the flag that says whether it is on the
    // path; null when the walk must not descend into it.
    bool* Enter(AXUIElementRef element) {
        const auto [entry, first] = descended_.try_emplace(Retained(element), true);
        if (first) {
            return &entry->second;
        }
        if (entry->second || repeatedDescents_ == kMostRepeatedDescents) {
            return nullptr;
        }
        ++repeatedDescents_;
        entry->second = true;
        return &entry->second;
    }

    void BeginLevel(Level level) {
        path_.push_back(std::move(level));
        Tell(&SearchTrace::LevelBegins);
    }

    void EndLevel(bool found) {
        Tell(&SearchTrace::LevelEnds, found);
        bool* const onPath = path_.back().onPath;
        if (onPath != nullptr) {
            *onPath = false;
        }
        path_.pop_back();
    }

    void Unwind() {
        EndLevel(true);
        while (!path_.empty()) {
            Tell(&SearchTrace::FoundBelow);
            EndLevel(true);
        }
    }

    template <typename... Parameters>
    void Tell(void (SearchTrace::*step)(Parameters...), Parameters... parameters) {
        if (trace_ != nullptr) {
            (trace_->*step)(parameters...);
        }
    }

    const ElementQuery& query_;
    SearchTrace* trace_;
    std::vector<Level> path_;

    // The elements that were descended into, with whether they are on the path now. An application
    // may list an ancestor among the children: without this the walk would never end.
    std::unordered_map<OwnedReference<AXUIElementRef>, bool, ElementHash, ElementEqual> descended_;

    int repeatedDescents_ = 0;
};

}  // namespace

OwnedReference<AXUIElementRef> FindElement(const ElementQuery& query, CFArrayRef children,
                                           SearchTrace* trace) {
    return Walk(query, trace).Find(children);
}

OwnedReference<AXUIElementRef> FindElementInWindows(const ElementQuery& query, CFArrayRef windows,
                                                    SearchTrace* trace) {
    for (CFIndex index = 0; index < CountOf(windows); ++index) {
        CallResult<OwnedReference<CFArrayRef>> children = ReadChildren(ElementAt(windows, index));
        if (trace != nullptr) {
            trace->WindowRead(index, children ? nullptr : &children.Failure());
        }
        if (!children) {
            continue;
        }
        if (auto found = FindElement(query, (*children).get(), trace)) {
            return found;
        }
    }
    return nullptr;
}
