#include "accessibility/DepthFirstSearch.h"

#include <unordered_set>
#include <utility>
#include <vector>

#include "accessibility/ElementAttributes.h"

namespace {

struct Level {
    OwnedReference<CFArrayRef> owner;  // the attributes that hold `children`; null at the top
    CFArrayRef children;
    CFIndex next;  // index of the child to visit
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

    // Elements whose children are, or have been, on the path. An application may answer children
    // that are an ancestor, or the children of several parents: without this the walk would never
    // end, or take time that grows exponentially. Searching the same children again could find
    // nothing new.
    std::unordered_set<OwnedReference<AXUIElementRef>, ElementHash, ElementEqual> descended;
};

OwnedReference<AXUIElementRef> DepthFirstSearch::Find(CFArrayRef children) {
    Walk walk;
    walk.path.push_back(Level{nullptr, children, 0});
    BeginLevel();
    while (!walk.path.empty()) {
        Level& level = walk.path.back();
        if (level.next >= CountOf(level.children)) {
            EndLevel(false);
            walk.path.pop_back();
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
    if (walk.descended.insert(Retained(child)).second) {
        walk.path.push_back(Level{std::move(attributes), children, 0});
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
