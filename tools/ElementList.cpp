#include "tools/ElementList.h"

#include <fmt/format.h>

#include <cmath>
#include <utility>

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

template <typename Content>
std::optional<Content> AttributeOf(const TreeElement& element, const char* attribute) {
    const auto found = element.attributes.find(attribute);
    if (found == element.attributes.end()) {
        return std::nullopt;
    }
    const auto answer = AnswerOf(found->second.get(), [](CFTypeRef) { return std::uint64_t{0}; });
    return answer ? ContentOf<Content>(*answer) : std::nullopt;
}

std::optional<desktop_link::Rect> FrameOf(const TreeElement& element) {
    return MakeFrame(AttributeOf<desktop_link::Point>(element, "AXPosition"),
                     AttributeOf<desktop_link::Size>(element, "AXSize"),
                     AttributeOf<desktop_link::Rect>(element, "AXFrame"));
}

constexpr std::size_t kMostSteps = 100;  // of an address that is whole
constexpr std::size_t kStepsAtEachEnd = 10;
constexpr char kLeftOut[] = "/...";

std::string Steps(const std::vector<std::size_t>& positions) {
    std::string steps;
    for (const std::size_t position : positions) {
        steps += fmt::format("/{}", position);
    }
    return steps;
}

// The positions of so many elements, of which the last is the given one and each lies in the one
// before.
std::vector<std::size_t> PositionsAbove(const ElementList& list, std::size_t place,
                                        std::size_t count) {
    std::vector<std::size_t> positions(count);
    for (std::size_t i = count; i-- > 0; place = list[place].parent) {
        positions[i] = list[place].position;
    }
    return positions;
}

}  // namespace

void AddElement(ElementList& list, ListedElement element) {
    if (!list.empty()) {
        const ListedElement& parent = list[element.parent];
        element.depth = parent.depth + 1;
        element.head = element.depth <= kStepsAtEachEnd ? list.size() : parent.head;
    }
    list.push_back(std::move(element));
}

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
        listed.frame = FrameOf(element);
        listed.parent = element.parent;
        listed.position = element.position;
        listed.alsoIn = element.alsoIn;
        AddElement(list, std::move(listed));
    }
    return list;
}

std::optional<desktop_link::Rect> MakeFrame(const std::optional<desktop_link::Point>& position,
                                            const std::optional<desktop_link::Size>& size,
                                            const std::optional<desktop_link::Rect>& frame) {
    std::optional<desktop_link::Rect> made = frame;
    if (position && size) {
        made = desktop_link::Rect{*position, *size};
    }
    const bool isFinite = made && std::isfinite(made->origin.x) && std::isfinite(made->origin.y) &&
                          std::isfinite(made->size.width) && std::isfinite(made->size.height);
    return isFinite ? made : std::nullopt;
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
    if (positions.size() <= kMostSteps) {
        return positions.empty() ? "/" : Steps(positions);
    }
    const auto first = positions.begin();
    const auto last = positions.end();
    return Steps({first, first + kStepsAtEachEnd}) + kLeftOut +
           Steps({last - kStepsAtEachEnd, last});
}

std::string AddressOf(const ElementList& list, std::size_t place) {
    const std::size_t depth = list[place].depth;
    if (depth <= kMostSteps) {
        return AddressText(PositionsAbove(list, place, depth));
    }
    return Steps(PositionsAbove(list, list[place].head, kStepsAtEachEnd)) + kLeftOut +
           Steps(PositionsAbove(list, place, kStepsAtEachEnd));
}

}  // namespace krt9ctl
