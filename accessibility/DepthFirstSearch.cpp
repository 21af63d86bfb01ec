#include "accessibility/DepthFirstSearch.h"

#include <unordered_map>
#include <utility>
#include <vector>

#include "accessibility/calls/ElementAttributes.h"

namespace {

struct Level {
    OwnedReference<CFArrayRef> owner;  // the attributes that hold `children`; null at the top
    CFArrayRef children;
    CFIndex next;  // index of the child to visit
    bool* onPath;  // whether the element whose children these are is on the path; null at the top
};

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

bool IsSearchedFurther(CFStringRef role) {
    return SameText(role, kAXGroupRole) || SameText(role, kAXSplitGroupRole) ||
           SameText(role, kAXScrollAreaRole);
}

}  // namespace

struct DepthFirstSearch::Walk {
    std::vector<Level> path;

    // The elements that were descended into, with whether they are on the path now. An application
    // may answer children that are an ancestor: without this the walk would never end.
    std::unordered_map<OwnedReference<AXUIElementRef>, bool, ElementHash, ElementEqual> descended;

    int repeatedDescents = 0;

    void Push(OwnedReference<CFArrayRef> owner, CFArrayRef children, bool* onPath) {
        path.push_back(Level{std::move(owner), children, 0, onPath});
    }

    void Pop() {
        if (bool* onPath = path.back().onPath) {
            *onPath = false;
        }
        path.pop_back();
    }

    // Takes note of the descent into the element: where to tell whether it is on the path; null
    // when it must not be descended into.
    bool* Enter(AXUIElementRef element) {
        const auto [entry, first] = descended.try_emplace(Retained(element), true);
        if (first) {
            return &entry->second;
        }
        if (entry->second || repeatedDescents == kMostRepeatedDescents) {
            return nullptr;
        }
        ++repeatedDescents;
        entry->second = true;
        return &entry->second;
    }
};

OwnedReference<AXUIElementRef> DepthFirstSearch::Find(CFArrayRef children) {
    Walk walk;
    walk.Push(nullptr, children, nullptr);
    BeginLevel();
    while (!walk.path.empty()) {
        Level& level = walk.path.back();
        if (level.next >= CountOf(level.children)) {
            EndLevel(false);
            walk.Pop();
            continue;
        }
        CFIndex index = level.next++;
        BeginChild(index);
        if (auto found = VisitChild(walk, ElementAt(level.children, index), index)) {
            Found(found.get(), index);
            Unwind(walk);
            return found;
        }
    }
    return nullptr;
}

OwnedReference<AXUIElementRef> DepthFirstSearch::VisitChild(Walk& walk, AXUIElementRef child,
                                                            CFIndex index) {
    OwnedReference<CFArrayRef> attributes = CopyAttributes(child, attributeNames_);
    CFStringRef role = StringAt(attributes.get(), kRoleIndex);
    if (role == nullptr) {
        return nullptr;
    }
    if (IsSought(child, index, role, attributes.get())) {
        return Retained(child);
    }
    if (IsSearchedFurther(role)) {
        BeginDescent(role);
        Descend(walk, child, std::move(attributes));
    }
    return nullptr;
}

void DepthFirstSearch::Descend(Walk& walk, AXUIElementRef child,
                               OwnedReference<CFArrayRef> attributes) {
    CFArrayRef children = ArrayAt(attributes.get(), kChildrenIndex);
    if (children == nullptr) {
        return;
    }
    ChildrenRead(CFArrayGetCount(children));
    if (bool* onPath = walk.Enter(child)) {
        walk.Push(std::move(attributes), children, onPath);
        BeginLevel();
    }
}

void DepthFirstSearch::Unwind(Walk& walk) {
    EndLevel(true);
    walk.path.pop_back();
    while (!walk.path.empty()) {
        FoundBelow();
        EndLevel(true);
        walk.path.pop_back();
    }
}
