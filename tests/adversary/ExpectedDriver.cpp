#include "tests/adversary/ExpectedDriver.h"

#include <algorithm>
#include <iterator>

#include "scenes/notation/Hex.h"
#include "tests/adversary/ExpectedValues.h"

namespace adversary {

using desktop_link::Array;
using desktop_link::Point;
using desktop_link::Size;

namespace {

bool IsOneOf(const std::string& text, const std::vector<std::string>& texts) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

Bytes Number(std::int32_t number) {
    return Integers({static_cast<unsigned int>(number)});
}

Bytes PointRecord(double x, double y) {
    return Number(Truncated(x)) + Number(Truncated(y));
}

// One of the two searches: they read other attributes and mean other roles by "any".
struct SearchRules {
    std::vector<std::string> attributes;  // role, children, identifier, and perhaps the subrole
    std::vector<std::string> anyRole;
};
const SearchRules kFromWindows = {
    {"AXRole", "AXChildren", "AXIdentifier", "AXSubrole"},
    {"AXButton", "AXCheckBox", "AXTable", "AXTextField", "AXRadioGroup"}};
const SearchRules kInArray = {{"AXRole", "AXChildren", "AXIdentifier"},
                              {"AXButton", "AXCheckBox", "AXTable", "AXRadioGroup"}};

constexpr int kMostEnteredAgain = 1000;  // into elements that the search has been in before

// Depth-first below one array of children.
class Search {
  public:
    Search(Replay& replay, const SearchRules& rules, const std::string& id, const std::string& role)
        : replay_(replay), rules_(rules), id_(id), role_(role) {}

    std::optional<ElementReference> In(const Array& children) {
        for (const desktop_link::Value& entry : children) {
            const auto child = ElementIn(entry);
            const auto values = child ? replay_.CopyAll(*child, rules_.attributes) : std::nullopt;
            const auto role = values ? TextAt(*values, 0) : std::nullopt;
            if (!role) {
                continue;
            }
            if (IsCandidate(*role, *values) && TextAt(*values, 2) == id_) {
                return child;
            }
            const auto* below = values->size() > 1 ? ArrayIn((*values)[1]) : nullptr;
            if (below != nullptr && IsOneOf(*role, {"AXGroup", "AXSplitGroup", "AXScrollArea"}) &&
                MayBeEntered(*child)) {
                path_.push_back(*child);
                const auto found = In(*below);
                path_.pop_back();
                if (found) {
                    return found;
                }
            }
        }
        return std::nullopt;
    }

  private:
    bool IsCandidate(const std::string& role, const Array& values) const {
        const bool asked = role_ == "VEKAXAllRoles" ? IsOneOf(role, rules_.anyRole) : role == role_;
        const bool knowsSubrole = rules_.attributes.size() > 3;
        return asked &&
               !(knowsSubrole && role == "AXTextField" && TextAt(values, 3) == "AXSearchField");
    }

    // Not within itself, and only a limited number of times: an application whose elements list
    // each other would be searched for ever.
    bool MayBeEntered(const ElementReference& element) {
        if (std::find(path_.begin(), path_.end(), element) != path_.end()) {
            return false;
        }
        if (std::find(entered_.begin(), entered_.end(), element) == entered_.end()) {
            entered_.push_back(element);
            return true;
        }
        return ++enteredAgain_ <= kMostEnteredAgain;
    }

    Replay& replay_;
    const SearchRules& rules_;
    const std::string& id_;
    const std::string& role_;
    std::vector<ElementReference> path_;
    std::vector<ElementReference> entered_;
    int enteredAgain_ = 0;
};

}  // namespace

std::string Description(const Outcome& outcome) {
    std::string text = "no reply";
    if (outcome.reply) {
        text = "reply " + scene_notation::FormatHex(*outcome.reply);
    }
    for (const std::string& line : outcome.logged) {
        text += ", logged \"" + line + "\"";
    }
    for (const std::string& message : outcome.sent) {
        text += ", sent \"" + message.substr(0, 40) + "\"";
    }
    return text;
}

// --- Elements ------------------------------------------------------------------------------------

std::optional<ExpectedDriver::Elements> ExpectedDriver::CopyElements(
    Replay& replay, const ElementReference& element, const std::string& attribute) {
    const auto value = replay.Copy(element, attribute);
    const Array* array = value ? ArrayIn(*value) : nullptr;
    if (array == nullptr) {
        return std::nullopt;
    }
    Elements elements;
    std::transform(array->begin(), array->end(), std::back_inserter(elements), ElementIn);
    return elements;
}

std::optional<ExpectedDriver::Elements> ExpectedDriver::Windows(Replay& replay) {
    return front.process == -1 ? std::nullopt
                               : CopyElements(replay, {front.process, 0}, "AXWindows");
}

std::optional<ElementReference> ExpectedDriver::Find(Replay& replay, const std::string& id,
                                                     const std::string& role) {
    if (!front.hasBundleIdentifier) {
        return std::nullopt;
    }
    for (const auto& window : Windows(replay).value_or(Elements())) {
        const auto children = window ? replay.Copy(*window, "AXChildren") : std::nullopt;
        const Array* array = children ? ArrayIn(*children) : nullptr;
        if (array != nullptr) {
            if (const auto found = Search(replay, kFromWindows, id, role).In(*array)) {
                return found;
            }
        }
    }
    return std::nullopt;
}

Outcome ExpectedDriver::Value(Replay& replay, const std::string& id) {
    const auto element = Find(replay, id, "VEKAXAllRoles");
    if (!element) {
        return {};
    }
    const auto value = replay.Copy(*element, "AXValue");
    return {Number(value ? NumberIn(*value).value_or(0) : 0), {}, {}};
}

Outcome ExpectedDriver::TextAsNumber(Replay& replay, const std::string& id) {
    const auto element = Find(replay, id, "VEKAXAllRoles");
    const auto value = element ? replay.Copy(*element, "AXValue") : std::nullopt;
    const auto text = value ? TextIn(*value) : std::nullopt;
    return text ? Outcome{Number(LeadingNumber(*text)), {}, {}} : Outcome();
}

Outcome ExpectedDriver::Position(Replay& replay, const std::string& id) {
    const auto element = Find(replay, id, "VEKAXAllRoles");
    const auto value = element ? replay.Copy(*element, "AXPosition") : std::nullopt;
    const auto* point = value ? std::get_if<Point>(&value->content) : nullptr;
    if (point == nullptr) {
        return {};
    }
    const double offset = profile >= 2 && id == "_NS:128" ? 0 : 17;
    return {PointRecord(point->x + offset, point->y + offset), {}, {}};
}

Outcome ExpectedDriver::ParentPosition(Replay& replay, const std::string& id) {
    const auto element = Find(replay, id, "VEKAXAllRoles");
    const auto above = element ? replay.Copy(*element, "AXParent") : std::nullopt;
    const auto parent = above ? ElementIn(*above) : std::nullopt;
    const auto value = parent ? replay.Copy(*parent, "AXPosition") : std::nullopt;
    const auto* point = value ? std::get_if<Point>(&value->content) : nullptr;
    return point != nullptr ? Outcome{PointRecord(point->x, point->y), {}, {}} : Outcome();
}

Outcome ExpectedDriver::Press(Replay& replay, const std::string& id) {
    if (const auto element = Find(replay, id, "VEKAXAllRoles")) {
        replay.Perform(*element, "AXPress");
    }
    return {};
}

Outcome ExpectedDriver::SelectedRadioButton(Replay& replay, const std::string& id) {
    const auto group = Find(replay, id, "AXRadioGroup");
    const auto children = group ? CopyElements(replay, *group, "AXChildren") : std::nullopt;
    std::int32_t index = 0;
    for (const auto& child : children.value_or(Elements())) {
        const auto value = child ? replay.Copy(*child, "AXValue") : std::nullopt;
        if (value && NumberIn(*value).value_or(0) != 0) {
            return {Number(index), {}, {}};
        }
        ++index;
    }
    return {std::nullopt, {"  GetValueOfAXRadioGroupWithID (" + id + ") failed!"}, {}};
}

Outcome ExpectedDriver::SelectRadioButton(Replay& replay, const std::string& id, unsigned index) {
    const auto group = Find(replay, id, "AXRadioGroup");
    const auto children = group ? CopyElements(replay, *group, "AXChildren") : std::nullopt;
    const bool there = children && index < children->size() && (*children)[index];
    const bool pressed = there && replay.Perform(*(*children)[index], "AXPress");
    return {std::nullopt,
            {"  SetValueOfAXRadioGroupWithID (" + id + ", " + std::to_string(index) +
             (pressed ? ") succeeded!" : ") failed!")},
            {}};
}

Outcome ExpectedDriver::SetNumberAsText(Replay& replay, const std::string& id, int number) {
    const auto field = Find(replay, id, "AXTextField");
    if (field && replay.Set(*field, "AXValue", {std::to_string(number)})) {
        replay.Perform(*field, "AXConfirm");
    }
    return {};
}

// --- Windows -------------------------------------------------------------------------------------

std::optional<Bytes> ExpectedDriver::Frame(Replay& replay, const ElementReference& window) {
    const auto position = replay.Copy(window, "AXPosition");
    const auto* point = position ? std::get_if<Point>(&position->content) : nullptr;
    if (point == nullptr) {
        return std::nullopt;
    }
    const auto extent = replay.Copy(window, "AXSize");
    const auto* size = extent ? std::get_if<Size>(&extent->content) : nullptr;
    if (size == nullptr) {
        return std::nullopt;
    }
    return PointRecord(point->x, point->y) + PointRecord(size->width, size->height);
}

std::optional<ElementReference> ExpectedDriver::WindowWithTitle(Replay& replay,
                                                                const std::string& title,
                                                                bool partial) {
    for (const auto& window : Windows(replay).value_or(Elements())) {
        const auto value = window ? replay.Copy(*window, "AXTitle") : std::nullopt;
        const auto text = value ? TextIn(*value) : std::nullopt;
        if (text && (partial ? Contains(*text, title) : *text == title)) {
            return window;
        }
    }
    return std::nullopt;
}

Outcome ExpectedDriver::WindowFrame(Replay& replay, const std::string& name, bool partial) {
    const auto window = WindowWithTitle(replay, name, partial);
    if (!window || !replay.Set(*window, "AXMain", {true})) {
        return {};
    }
    return {Frame(replay, *window), {}, {}};
}

// Without a translation file every name is its own translation.
Outcome ExpectedDriver::TargetWindowFrame(Replay& replay,
                                          const std::vector<Candidate>& candidates) {
    for (const auto& window : Windows(replay).value_or(Elements())) {
        const auto value = window ? replay.Copy(*window, "AXTitle") : std::nullopt;
        const auto title = value ? TextIn(*value) : std::nullopt;
        if (!title) {
            return {};
        }
        const auto match =
            std::find_if(candidates.begin(), candidates.end(),
                         [&](const Candidate& each) { return Contains(*title, each.name); });
        if (match == candidates.end()) {
            continue;
        }
        const auto chosen =
            match->subWindow ? WindowWithTitle(replay, *match->subWindow, true) : window;
        const auto frame = chosen ? Frame(replay, *chosen) : std::nullopt;
        if (!frame) {
            return {};
        }
        return {Number(static_cast<std::int32_t>(match - candidates.begin())) + *frame, {}, {}};
    }
    return {};
}

std::optional<ElementReference> ExpectedDriver::ColorPuck(Replay& replay, const std::string& id) {
    const auto below = [&](const std::optional<ElementReference>& parent) {
        return parent ? CopyElements(replay, *parent, "AXChildren").value_or(Elements())
                      : Elements();
    };
    const auto hasText = [&](const std::optional<ElementReference>& element, const char* attribute,
                             const std::string& text) {
        const auto value = element ? replay.Copy(*element, attribute) : std::nullopt;
        return value && TextIn(*value) == text;
    };
    for (const auto& window : Windows(replay).value_or(Elements())) {
        for (const auto& splitGroup : below(window)) {
            if (!hasText(splitGroup, "AXRole", "AXSplitGroup")) {
                continue;
            }
            for (const auto& group : below(splitGroup)) {
                if (!hasText(group, "AXRole", "AXGroup")) {
                    continue;
                }
                for (const auto& button : below(group)) {
                    if (hasText(button, "AXRole", "AXButton") &&
                        hasText(button, "AXIdentifier", id)) {
                        return button;
                    }
                }
            }
        }
    }
    return std::nullopt;
}

std::optional<ElementReference> ExpectedDriver::ChildWithID(Replay& replay, const std::string& id) {
    const auto children = replay.Copy(mainWindow, "AXChildren");
    const Array* array = children ? ArrayIn(*children) : nullptr;
    return array != nullptr ? Search(replay, kInArray, id, "VEKAXAllRoles").In(*array)
                            : std::nullopt;
}

std::optional<ElementReference> ExpectedDriver::ChildWithDescription(
    Replay& replay, const std::string& role, const std::string& description) {
    for (const auto& child : CopyElements(replay, mainWindow, "AXChildren").value_or(Elements())) {
        const auto values =
            child ? replay.CopyAll(*child, {"AXRole", "AXDescription"}) : std::nullopt;
        if (values && TextAt(*values, 0) == role && TextAt(*values, 1) == description) {
            return child;
        }
    }
    return std::nullopt;
}

// --- Session -------------------------------------------------------------------------------------

// The pointer's y counts from the bottom of the main screen, whose height is then read again.
Outcome ExpectedDriver::PointerPosition(Replay& replay) {
    Point pointer;
    double heightAtPointer = 0;
    for (const auto& value : replay.OfSession(Operation::pointerLocation)) {
        if (const auto* point = std::get_if<Point>(&value.content)) {
            pointer = *point;
        } else if (const auto* rect = std::get_if<desktop_link::Rect>(&value.content)) {
            heightAtPointer = rect->size.height;
        }
    }
    std::optional<double> height;
    for (const auto& value : replay.OfSession(Operation::screens)) {
        const auto* rect = std::get_if<desktop_link::Rect>(&value.content);
        height = height || rect == nullptr ? height : rect->size.height;
    }
    return {PointRecord(pointer.x, height.value_or(0) - (heightAtPointer - pointer.y)), {}, {}};
}

Outcome ExpectedDriver::EventsPosted(Replay& replay, int count) {
    for (int i = 0; i < count; ++i) {
        replay.OfSession(Operation::postEvent);
    }
    return {};
}

}  // namespace adversary
