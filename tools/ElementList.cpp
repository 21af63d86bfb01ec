#include "tools/ElementList.h"

#include <fmt/format.h>

#include <algorithm>

#include "scenes/notation/ValueWriting.h"
#include "tools/AttributeValue.h"
#include "tools/Text.h"

namespace krt9ctl {

namespace {

std::optional<std::string> TextOf(const TreeElement& element, const std::string& attribute) {
    const auto found = element.attributes.find(attribute);
    return found == element.attributes.end() ? std::nullopt : Utf8Of(found->second.get());
}

std::optional<Json> ValueOf(const TreeElement& element) {
    const auto found = element.attributes.find("AXValue");
    if (found == element.attributes.end()) {
        return std::nullopt;
    }
    const auto answer = AnswerOf(found->second.get(), [](CFTypeRef) { return std::uint64_t{0}; });
    return answer ? ListedValue(*answer) : std::nullopt;
}

}  // namespace

ElementList ListElements(const AccessibilityTree& tree) {
    ElementList list;
    list.reserve(tree.Elements().size());
    for (const TreeElement& element : tree.Elements()) {
        ListedElement listed;
        listed.role = TextAttribute(element, "AXRole");
        listed.subrole = TextAttribute(element, "AXSubrole");
        listed.identifier = TextOf(element, "AXIdentifier");
        listed.title = TextOf(element, "AXTitle");
        listed.description = TextOf(element, "AXDescription");
        listed.value = ValueOf(element);
        listed.parent = element.parent;
        listed.position = element.position;
        listed.depth = list.empty() ? 0 : list[element.parent].depth + 1;
        listed.alsoIn = element.alsoIn;
        list.push_back(std::move(listed));
    }
    return list;
}

std::optional<Json> ListedValue(const scene_notation::Answer& answer) {
    if (!answer.HasValue()) {
        return std::nullopt;
    }
    return scene_notation::WriteAnswer(answer, "AXValue",
                                       [](const auto&) { return Json("an element"); });
}

std::optional<std::string> ValueText(const ListedElement& element) {
    if (!element.value) {
        return std::nullopt;
    }
    return element.value->is_string() ? element.value->get<std::string>() : OneLine(*element.value);
}

std::string AddressText(const std::vector<std::size_t>& positions) {
    constexpr std::size_t kMostSteps = 100;
    constexpr std::size_t kShownAtEachEnd = 10;
    std::string address = positions.empty() ? "/" : "";
    for (std::size_t i = 0; i < positions.size(); ++i) {
        if (positions.size() > kMostSteps && i == kShownAtEachEnd) {
            i = positions.size() - kShownAtEachEnd;
            address += "/...";
        }
        address += fmt::format("/{}", positions[i]);
    }
    return address;
}

std::string AddressOf(const ElementList& list, std::size_t place) {
    std::vector<std::size_t> positions;
    for (; place != 0; place = list[place].parent) {
        positions.push_back(list[place].position);
    }
    std::reverse(positions.begin(), positions.end());
    return AddressText(positions);
}

}  // namespace krt9ctl
