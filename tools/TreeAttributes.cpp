#include "tools/TreeAttributes.h"

#include <algorithm>
#include <iterator>

namespace krt9ctl {

namespace {

struct Subject {
    const AccessibilityTree& tree;
    std::size_t place;
    CFTypeRef value;

    const TreeElement& Element() const { return tree.Elements()[place]; }
};

bool IsNumber(CFTypeRef value, std::int64_t expected) {
    std::int64_t number = 0;
    return CFGetTypeID(value) == CFNumberGetTypeID() &&
           !CFNumberIsFloatType(static_cast<CFNumberRef>(value)) &&
           CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberSInt64Type, &number) &&
           number == expected;
}

bool IsParent(const Subject& subject) {
    return subject.tree.Find(subject.value) == subject.Element().parent;
}

bool IsTopLevel(const Subject& subject) {
    const std::size_t topLevel = subject.Element().topLevel;
    return topLevel != subject.place && subject.tree.Find(subject.value) == topLevel;
}

template <typename Structure>
std::optional<Structure> StructureOf(const TreeElement& element, const char* attribute,
                                     AXValueType type) {
    const auto found = element.attributes.find(attribute);
    Structure structure{};
    if (found == element.attributes.end() ||
        CFGetTypeID(found->second.get()) != AXValueGetTypeID() ||
        !AXValueGetValue(static_cast<AXValueRef>(found->second.get()), type, &structure)) {
        return std::nullopt;
    }
    return structure;
}

bool IsPositionAndSize(const Subject& subject) {
    const TreeElement& element = subject.Element();
    const auto position = StructureOf<CGPoint>(element, "AXPosition", kAXValueTypeCGPoint);
    const auto size = StructureOf<CGSize>(element, "AXSize", kAXValueTypeCGSize);
    const auto frame = StructureOf<CGRect>(element, "AXFrame", kAXValueTypeCGRect);
    return position && size && frame && frame->origin.x == position->x &&
           frame->origin.y == position->y && frame->size.width == size->width &&
           frame->size.height == size->height;
}

bool IsRowNumber(const Subject& subject) {
    const TreeElement& element = subject.Element();
    return element.isRow && IsNumber(subject.value, static_cast<std::int64_t>(element.rowPosition));
}

bool IsSelectionOfParent(const Subject& subject) {
    const TreeElement& element = subject.Element();
    return element.isRow && CFGetTypeID(subject.value) == CFBooleanGetTypeID() &&
           IsTrue(subject.value) == element.isSelectedRow;
}

bool AreRows(const Subject& subject) {
    const TreeElement& element = subject.Element();
    const std::string role = TextAttribute(element, "AXRole");
    std::vector<std::size_t> rows;
    std::copy_if(element.children.begin(), element.children.end(), std::back_inserter(rows),
                 [&](std::size_t child) { return subject.tree.Elements()[child].isRow; });
    return (role == "AXTable" || role == "AXOutline") &&
           subject.tree.FindAll(subject.value) == rows;
}

constexpr struct {
    std::string_view attribute;
    bool (*follows)(const Subject&);
} kRules[] = {
    {"AXParent", IsParent},
    {"AXWindow", IsTopLevel},
    {"AXTopLevelUIElement", IsTopLevel},
    {"AXFrame", IsPositionAndSize},
    {"AXIndex", IsRowNumber},
    {"AXSelected", IsSelectionOfParent},
    {"AXRows", AreRows},
    {"AXVisibleRows", AreRows},
};

}  // namespace

bool FollowsFromTree(const AccessibilityTree& tree, std::size_t place, const std::string& attribute,
                     CFTypeRef value) {
    const auto* rule = std::find_if(std::begin(kRules), std::end(kRules),
                                    [&](const auto& each) { return each.attribute == attribute; });
    return rule != std::end(kRules) && rule->follows({tree, place, value});
}

std::optional<std::size_t> MainWindow(const AccessibilityTree& tree) {
    for (const std::size_t window : tree.Elements()[0].children) {
        const auto& attributes = tree.Elements()[window].attributes;
        const auto main = attributes.find("AXMain");
        if (main != attributes.end() && IsTrue(main->second.get())) {
            return window;
        }
    }
    return std::nullopt;
}

bool IsTrue(CFTypeRef value) {
    return CFGetTypeID(value) == CFBooleanGetTypeID() &&
           CFBooleanGetValue(static_cast<CFBooleanRef>(value));
}

}  // namespace krt9ctl
