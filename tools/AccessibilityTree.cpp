#include "tools/AccessibilityTree.h"

#include <algorithm>
#include <utility>

#include "VEKCommon/OwnedReference.h"
#include "tools/Text.h"

namespace krt9ctl {

namespace {

// A limit for trees that grow while they are read, as those whose children are made on demand.
constexpr std::size_t kMostElements = 200000;
constexpr std::size_t kProgressStep = 100;  // elements

bool IsElement(CFTypeRef object) {
    return CFGetTypeID(object) == AXUIElementGetTypeID();
}

bool IsArrayOfElements(CFTypeRef object) {
    if (CFGetTypeID(object) != CFArrayGetTypeID()) {
        return false;
    }
    const auto array = static_cast<CFArrayRef>(object);
    for (CFIndex i = 0; i < CFArrayGetCount(array); ++i) {
        if (!IsElement(CFArrayGetValueAtIndex(array, i))) {
            return false;
        }
    }
    return true;
}

// Errors that end the reading of the whole tree; any other error concerns one element only.
bool IsFatal(AXError error) {
    return error == kAXErrorCannotComplete || error == kAXErrorAPIDisabled ||
           error == kAXErrorNotImplemented;
}

}  // namespace

std::variant<AccessibilityTree, AXError> AccessibilityTree::Read(pid_t pid,
                                                                 const Options& options) {
    AccessibilityTree tree;
    const OwnedReference<AXUIElementRef> systemWide(AXUIElementCreateSystemWide());
    AXUIElementSetMessagingTimeout(systemWide.get(), options.timeout);
    tree.Add({0, OwnedReference<AXUIElementRef>(AXUIElementCreateApplication(pid))});
    const AXError error = tree.Walk(options);
    if (error != kAXErrorSuccess) {
        return error;
    }
    for (TreeElement& element : tree.elements_) {
        tree.NumberChildren(element);
        tree.MarkSelectedRows(element);
    }
    return tree;
}

AXError AccessibilityTree::Walk(const Options& options) {
    if (const AXError error = ReadElement(0, options); error != kAXErrorSuccess) {
        return error;
    }
    CFTypeRef windows = nullptr;
    const AXError error =
        AXUIElementCopyAttributeValue(elements_[0].element.get(), kAXWindowsAttribute, &windows);
    const OwnedReference<CFTypeRef> owner(windows);
    if (error != kAXErrorSuccess || !IsArrayOfElements(windows)) {
        windowsError_ = error != kAXErrorSuccess ? error : kAXErrorFailure;
        return IsFatal(error) ? error : kAXErrorSuccess;
    }
    AddPending(0, static_cast<CFArrayRef>(windows));
    while (!pending_.empty()) {
        Pending next = std::move(pending_.back());
        pending_.pop_back();
        if (const auto known = places_.find(next.element.get()); known != places_.end()) {
            // A child of two parents, or of itself, is kept where it was met first.
            elements_[known->second].alsoIn.push_back(next.parent);
            continue;
        }
        if (elements_.size() > kMostElements) {
            ++leftOut_;
            continue;
        }
        const std::size_t place = Add(std::move(next));
        if (place % kProgressStep == 0) {
            options.progress(place);
        }
        const AXError problem = ReadElement(place, options);
        if (IsFatal(problem)) {
            return problem;
        }
        if (problem != kAXErrorSuccess) {
            places_.erase(elements_.back().element.get());
            elements_.pop_back();
            ++leftOut_;
            continue;
        }
        elements_[elements_[place].parent].children.push_back(place);
    }
    return kAXErrorSuccess;
}

std::size_t AccessibilityTree::Add(Pending pending) {
    const std::size_t place = elements_.size();
    places_.emplace(pending.element.get(), place);
    TreeElement added;
    added.element = std::move(pending.element);
    added.parent = pending.parent;
    added.topLevel = pending.parent == 0 ? place : elements_[pending.parent].topLevel;
    elements_.push_back(std::move(added));
    return place;
}

AXError AccessibilityTree::ReadElement(std::size_t place, const Options& options) {
    AXUIElementRef element = elements_[place].element.get();
    CFArrayRef names = nullptr;
    if (const AXError error = AXUIElementCopyAttributeNames(element, &names);
        error != kAXErrorSuccess) {
        return error;
    }
    const OwnedReference<CFArrayRef> nameOwner(names);
    CFArrayRef values = nullptr;
    if (const AXError error = AXUIElementCopyMultipleAttributeValues(element, names, 0, &values);
        error != kAXErrorSuccess) {
        return error;
    }
    const OwnedReference<CFArrayRef> valueOwner(values);
    TakeValues(place, names, values);
    CFArrayRef actions = nullptr;
    if (options.withActions && AXUIElementCopyActionNames(element, &actions) == kAXErrorSuccess) {
        const OwnedReference<CFArrayRef> actionOwner(actions);
        auto& known = elements_[place].actions.emplace();
        for (CFIndex i = 0; i < CFArrayGetCount(actions); ++i) {
            known.push_back(Utf8Of(CFArrayGetValueAtIndex(actions, i)).value_or("?"));
        }
    }
    return kAXErrorSuccess;
}

void AccessibilityTree::TakeValues(std::size_t place, CFArrayRef names, CFArrayRef values) {
    const CFIndex count = std::min(CFArrayGetCount(names), CFArrayGetCount(values));
    for (CFIndex i = 0; i < count; ++i) {
        const auto name = Utf8Of(CFArrayGetValueAtIndex(names, i));
        CFTypeRef value = CFArrayGetValueAtIndex(values, i);
        if (!name) {
            continue;
        }
        if (*name == "AXChildren" && place != 0 && IsArrayOfElements(value)) {
            elements_[place].hasChildren = true;
            AddPending(place, static_cast<CFArrayRef>(value));
        } else {
            elements_[place].attributes[*name] = Retained(value);
        }
    }
}

// Last first, since the walk takes the last one that is pending.
void AccessibilityTree::AddPending(std::size_t parent, CFArrayRef children) {
    for (CFIndex i = CFArrayGetCount(children) - 1; i >= 0; --i) {
        pending_.push_back(
            {parent, Retained(static_cast<AXUIElementRef>(CFArrayGetValueAtIndex(children, i)))});
    }
}

void AccessibilityTree::NumberChildren(TreeElement& parent) {
    std::size_t rows = 0;
    for (std::size_t i = 0; i < parent.children.size(); ++i) {
        TreeElement& child = elements_[parent.children[i]];
        child.position = i;
        child.isRow = TextAttribute(child, "AXRole") == "AXRow";
        child.rowPosition = child.isRow ? rows++ : 0;
    }
}

void AccessibilityTree::MarkSelectedRows(TreeElement& table) {
    const auto found = table.attributes.find("AXSelectedRows");
    const auto rows = found == table.attributes.end() ? std::nullopt : FindAll(found->second.get());
    const auto isChild = [&](std::size_t row) {
        return &elements_[elements_[row].parent] == &table;
    };
    if (!rows || !std::all_of(rows->begin(), rows->end(), isChild)) {
        return;
    }
    table.selectedRows.emplace();
    for (const std::size_t row : *rows) {
        elements_[row].isSelectedRow = true;
        table.selectedRows->push_back(elements_[row].position);
    }
}

std::string TextAttribute(const TreeElement& element, const std::string& attribute) {
    const auto found = element.attributes.find(attribute);
    return found == element.attributes.end() ? std::string()
                                             : Utf8Of(found->second.get()).value_or("");
}

std::optional<std::vector<std::size_t>> AccessibilityTree::FindAll(CFTypeRef value) const {
    if (CFGetTypeID(value) != CFArrayGetTypeID()) {
        return std::nullopt;
    }
    const auto array = static_cast<CFArrayRef>(value);
    std::vector<std::size_t> places;
    for (CFIndex i = 0; i < CFArrayGetCount(array); ++i) {
        const auto place = Find(CFArrayGetValueAtIndex(array, i));
        if (!place) {
            return std::nullopt;
        }
        places.push_back(*place);
    }
    return places;
}

std::optional<std::size_t> AccessibilityTree::Find(CFTypeRef element) const {
    const auto found = places_.find(element);
    return found == places_.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace krt9ctl
