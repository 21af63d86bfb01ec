#include "tools/SceneElements.h"

#include <algorithm>
#include <map>
#include <unordered_map>
#include <utility>
#include <vector>

#include "scenes/notation/Addresses.h"
#include "scenes/notation/Fields.h"
#include "scenes/notation/Names.h"
#include "scenes/notation/ValueReading.h"

namespace krt9ctl {

using scene_notation::AddressStep;
using scene_notation::ExpectObject;
using scene_notation::Field;
using scene_notation::Place;

namespace {

scene_notation::Answer AnswerIn(const SceneJson& element, const char* attribute,
                                const std::string& place) {
    const SceneJson* field = Field(element, attribute);
    if (field == nullptr) {
        return scene_notation::Answer::Error(scene_notation::kNoValueError);
    }
    const auto anyElement = [](const std::string&, const std::string&, const std::string&) {
        return desktop_link::ElementReference{};
    };
    return scene_notation::ReadAnswer(*field, attribute, Place(place, attribute), anyElement);
}

ListedElement Listed(const SceneJson& element, const std::string& place) {
    ListedElement listed;
    listed.role = TextIn(element, "AXRole").value_or("");
    listed.subrole = TextIn(element, "AXSubrole").value_or("");
    listed.identifier = TextIn(element, "AXIdentifier");
    listed.title = TextIn(element, "AXTitle");
    listed.description = TextIn(element, "AXDescription");
    listed.value = ListedValue(AnswerIn(element, "AXValue", place));
    listed.frame = MakeFrame(ContentOf<desktop_link::Point>(AnswerIn(element, "AXPosition", place)),
                             ContentOf<desktop_link::Size>(AnswerIn(element, "AXSize", place)),
                             ContentOf<desktop_link::Rect>(AnswerIn(element, "AXFrame", place)));
    return listed;
}

constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);

// Every element of the applications that have been asked for. The first of an application's is the
// application itself.
class Elements {
  public:
    explicit Elements(const SceneJson& scene) : applications_(scene.at("applications")) {}

    ElementList ListOf(std::size_t application);

  private:
    struct Node {
        const SceneJson* children;  // as they are written; null when they are not
        std::size_t root;           // of its application
        std::size_t application;
        ListedElement listed;
        std::vector<std::size_t> written;  // the children that are written here
    };
    // An array of children that are being read.
    struct Level {
        const SceneJson* children;
        std::size_t next, parent;
        std::string place;
    };

    std::size_t RootOf(std::size_t application);
    void ReadBelow(std::size_t root, const std::string& place);
    std::vector<std::size_t> ChildrenOf(std::size_t node);
    std::vector<std::size_t> NamedChildren(const SceneJson& array, std::size_t ownRoot);
    std::size_t Find(const std::string& address, std::size_t root) const;
    std::size_t Follow(const std::vector<AddressStep>& path, std::size_t root) const;
    std::size_t ChildAt(std::size_t node, const AddressStep& step) const;
    std::size_t RootNamed(const SceneJson& child, std::size_t ownRoot);

    const SceneJson& applications_;
    std::vector<Node> nodes_;
    std::unordered_map<std::size_t, std::size_t> roots_;  // by the application's index
    std::map<std::pair<std::size_t, std::string>, std::size_t> named_;  // root and identifier
};

std::size_t Elements::RootOf(std::size_t application) {
    const auto [known, isNew] = roots_.emplace(application, nodes_.size());
    if (isNew) {
        const std::string place = Place("applications", application);
        const SceneJson& json = ExpectObject(applications_[application], place);
        ListedElement listed;
        listed.role = "AXApplication";
        listed.title = TextIn(json, "name");
        nodes_.push_back(
            {Field(json, "windows"), known->second, application, std::move(listed), {}});
        ReadBelow(known->second, Place(place, "windows"));
    }
    return known->second;
}

void Elements::ReadBelow(std::size_t root, const std::string& place) {
    const std::size_t application = nodes_[root].application;
    std::vector<Level> open;
    const auto openAll = [&](std::size_t parent, const std::string& childrenPlace) {
        const SceneJson* children = nodes_[parent].children;
        if (children != nullptr && children->is_array()) {
            open.push_back({children, 0, parent, childrenPlace});
        }
    };
    openAll(root, place);
    while (!open.empty()) {
        Level& level = open.back();
        if (level.next == level.children->size()) {
            open.pop_back();
            continue;
        }
        const std::string here = Place(level.place, level.next);
        const SceneJson& json = ExpectObject((*level.children)[level.next++], here);
        const std::size_t node = nodes_.size();
        nodes_[level.parent].written.push_back(node);
        nodes_.push_back({Field(json, "AXChildren"), root, application, Listed(json, here), {}});
        if (const auto& identifier = nodes_[node].listed.identifier) {
            named_.emplace(std::pair(root, *identifier), node);
        }
        openAll(node, Place(here, "AXChildren"));
    }
}

std::vector<std::size_t> Elements::ChildrenOf(std::size_t node) {
    const SceneJson* children = nodes_[node].children;
    if (children == nullptr || !children->is_object()) {
        return nodes_[node].written;
    }
    const SceneJson* array = Field(*children, scene_notation::tag::kArray);
    return array != nullptr && array->is_array() ? NamedChildren(*array, nodes_[node].root)
                                                 : std::vector<std::size_t>();
}

// Nothing when any of them is not an element. One that the scene does not have, or no longer, is
// left out.
std::vector<std::size_t> Elements::NamedChildren(const SceneJson& array, std::size_t ownRoot) {
    std::vector<std::size_t> found;
    for (const SceneJson& child : array) {
        const SceneJson* address =
            child.is_object() ? Field(child, scene_notation::tag::kElement) : nullptr;
        if (address == nullptr) {
            return {};
        }
        const std::size_t root = RootNamed(child, ownRoot);
        if (address->is_string() && root != kNowhere) {
            found.push_back(Find(address->get<std::string>(), root));
        }
    }
    std::erase(found, kNowhere);
    return found;
}

std::size_t Elements::RootNamed(const SceneJson& child, std::size_t ownRoot) {
    const auto name = TextIn(child, scene_notation::tag::kApplication);
    if (!name) {
        return ownRoot;
    }
    for (std::size_t i = 0; i < applications_.size(); ++i) {
        if (applications_[i].is_object() && IsNamed(applications_[i], *name)) {
            return RootOf(i);
        }
    }
    return kNowhere;
}

std::size_t Elements::Find(const std::string& address, std::size_t root) const {
    if (const auto path = scene_notation::ParsePath(address)) {
        return Follow(*path, root);
    }
    const auto named = named_.find({root, address});
    return named == named_.end() ? kNowhere : named->second;
}

std::size_t Elements::ChildAt(std::size_t node, const AddressStep& step) const {
    const auto& children = nodes_[node].written;
    if (!step.role) {
        return step.number < children.size() ? children[step.number] : kNowhere;
    }
    std::size_t left = step.number;
    const auto child = std::find_if(children.begin(), children.end(), [&](std::size_t each) {
        return nodes_[each].listed.role == *step.role && left-- == 0;
    });
    return child == children.end() ? kNowhere : *child;
}

std::size_t Elements::Follow(const std::vector<AddressStep>& path, std::size_t root) const {
    std::size_t node = root;
    for (const AddressStep& step : path) {
        node = ChildAt(node, step);
        if (node == kNowhere) {
            break;
        }
    }
    return node;
}

// Each element where it is met first, and where else it is listed, as AccessibilityTree has them.
ElementList Elements::ListOf(std::size_t application) {
    const std::size_t root = RootOf(application);
    ElementList list;
    std::unordered_map<std::size_t, std::size_t> places;  // in the list, by node
    std::vector<std::size_t> kept;                        // children, by the parent's place
    std::vector<std::pair<std::size_t, std::size_t>> pending = {{0, root}};  // parent's place, node
    while (!pending.empty()) {
        const auto [parent, node] = pending.back();
        pending.pop_back();
        if (const auto known = places.find(node); known != places.end()) {
            list[known->second].alsoIn.push_back(parent);
            continue;
        }
        const std::size_t place = list.size();
        places.emplace(node, place);
        ListedElement listed = nodes_[node].listed;
        listed.parent = parent;
        listed.position = place == 0 ? 0 : kept[parent]++;
        AddElement(list, std::move(listed));
        kept.push_back(0);
        const auto children = ChildrenOf(node);
        for (auto child = children.rbegin(); child != children.rend(); ++child) {
            pending.emplace_back(place, *child);
        }
    }
    return list;
}

}  // namespace

std::optional<std::string> TextIn(const SceneJson& object, const char* key) {
    const SceneJson* field = Field(object, key);
    return field != nullptr && field->is_string() ? std::optional(field->get<std::string>())
                                                  : std::nullopt;
}

bool IsNamed(const SceneJson& application, const std::string& name) {
    const SceneJson* pid = Field(application, "pid");
    return TextIn(application, "bundleID") == name ||
           (pid != nullptr && pid->is_number_integer() && name == "pid:" + pid->dump());
}

ElementList ListSceneElements(const SceneJson& scene, std::size_t application) {
    return Elements(scene).ListOf(application);
}

}  // namespace krt9ctl
