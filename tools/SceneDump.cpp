#include "tools/SceneDump.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>

#include "scenes/notation/Addresses.h"
#include "scenes/notation/Names.h"
#include "scenes/notation/SceneText.h"
#include "scenes/notation/ValueWriting.h"
#include "tools/AttributeValue.h"
#include "tools/Text.h"
#include "tools/TreeAttributes.h"

namespace krt9ctl {

using scene_notation::Json;
using scene_notation::Members;

namespace {

// In values, the id of an element of the tree is its place there.
constexpr std::uint64_t kNotInTree = std::numeric_limits<std::uint64_t>::max();

// Elements are named by their places in the tree.
class SceneWriter {
  public:
    SceneWriter(const AccessibilityTree& tree, const ChangeAnswer& change)
        : tree_(tree), change_(change), mainWindow_(MainWindow(tree)) {}

    SceneDump Write(const ApplicationFacts& facts, bool isFront);

    // For scene_notation::LinesBelow.
    const std::vector<std::size_t>& Children(std::size_t place) const { return At(place).children; }
    bool HasChildren(std::size_t place) const { return At(place).hasChildren; }
    Members MembersOf(std::size_t place);

  private:
    const TreeElement& At(std::size_t place) const { return tree_.Elements()[place]; }

    Members MembersOf(const ApplicationFacts& facts) const;
    void AddAttribute(std::size_t place, const std::string& name, CFTypeRef value,
                      Members& members);
    void AddMain(std::size_t place, Members& members) const;
    Json Describe(std::uint64_t id) const;
    std::string Changed(const std::string& name) const;

    const AccessibilityTree& tree_;
    const ChangeAnswer& change_;
    std::optional<std::size_t> mainWindow_;
    std::size_t leftOutValues_ = 0;
};

SceneDump SceneWriter::Write(const ApplicationFacts& facts, bool isFront) {
    const std::string key = facts.bundleIdentifier.value_or(fmt::format("pid:{}", facts.pid));
    scene_notation::SceneText text;
    text.Add("front", isFront ? Json(key) : Json(nullptr));
    if (const auto error = tree_.WindowsError()) {
        text.AddApplication(MembersOf(facts), Json{{scene_notation::tag::kFailure, *error}});
    } else {
        text.AddApplication(MembersOf(facts), scene_notation::LinesBelow(std::size_t{0}, *this));
    }
    return {text.Finish(), leftOutValues_};
}

Members SceneWriter::MembersOf(const ApplicationFacts& facts) const {
    Members members;
    if (facts.bundleIdentifier) {
        members.Add("bundleID", *facts.bundleIdentifier);
    }
    // An empty name is written, too: without one, a scene derives it from the bundle identifier.
    const auto title = At(0).attributes.find("AXTitle");
    const auto name = title == At(0).attributes.end() ? std::nullopt : Utf8Of(title->second.get());
    if (name) {
        members.Add("name", Changed(*name));
    }
    members.Add("pid", facts.pid);
    Json info = Json::object();
    if (facts.shortVersion) {
        info["CFBundleShortVersionString"] = *facts.shortVersion;
    }
    if (facts.signature) {
        info["CFBundleSignature"] = *facts.signature;
    }
    if (!info.empty()) {
        members.Add("info", info);
    }
    return members;
}

Members SceneWriter::MembersOf(std::size_t place) {
    const TreeElement& element = At(place);
    std::vector<const std::string*> names;
    for (const auto& [name, value] : element.attributes) {
        names.push_back(&name);
    }
    std::sort(names.begin(), names.end(), [](const auto* left, const auto* right) {
        return scene_notation::AttributeComesBefore(*left, *right);
    });
    Members members;
    for (const std::string* name : names) {
        AddAttribute(place, *name, element.attributes.at(*name).get(), members);
    }
    AddMain(place, members);
    if (element.actions) {
        members.Add("actions", *element.actions);
    }
    return members;
}

void SceneWriter::AddAttribute(std::size_t place, const std::string& name, CFTypeRef value,
                               Members& members) {
    const bool isMainOfWindow =
        name == "AXMain" && At(place).parent == 0 && CFGetTypeID(value) == CFBooleanGetTypeID();
    if (isMainOfWindow || FollowsFromTree(tree_, place, name, value)) {
        return;
    }
    if (name == "AXSelectedRows" && At(place).selectedRows) {
        members.Add(name, *At(place).selectedRows);
        return;
    }
    auto answer = AnswerOf(
        value, [this](CFTypeRef element) { return tree_.Find(element).value_or(kNotInTree); });
    if (!answer || !scene_notation::IsAttributeName(name)) {
        ++leftOutValues_;
        return;
    }
    if (change_) {
        change_(At(place), name, *answer);
    }
    members.Add(name, scene_notation::WriteAnswer(*answer, name, [this](const auto& reference) {
                    return Describe(reference.id);
                }));
}

std::string SceneWriter::Changed(const std::string& name) const {
    auto answer = scene_notation::Answer::Of({name});
    if (change_) {
        change_(At(0), "AXTitle", answer);
    }
    return std::get<std::string>(answer.value.content);
}

// One window of an application is its main one. If none is, the first one says so, since a scene
// would otherwise make it the main one.
void SceneWriter::AddMain(std::size_t place, Members& members) const {
    if (place == mainWindow_) {
        members.Add("AXMain", true);
    } else if (!mainWindow_ && place == At(0).children.front()) {
        members.Add("AXMain", false);
    }
}

Json SceneWriter::Describe(std::uint64_t id) const {
    if (id == kNotInTree) {
        return scene_notation::WriteNoElement();
    }
    std::vector<std::size_t> path;
    for (std::size_t place = id; place != 0; place = At(place).parent) {
        path.push_back(At(place).position);
    }
    return scene_notation::WriteElement(scene_notation::PathAddress(path));
}

}  // namespace

SceneDump WriteScene(const AccessibilityTree& tree, const ApplicationFacts& facts, bool isFront,
                     const ChangeAnswer& change) {
    return SceneWriter(tree, change).Write(facts, isFront);
}

}  // namespace krt9ctl
