#include "tools/SceneDump.h"

#include <fmt/format.h>

#include <algorithm>

#include "scenes/notation/Names.h"
#include "scenes/notation/SceneText.h"
#include "tools/SceneValue.h"
#include "tools/Text.h"
#include "tools/TreeAttributes.h"

namespace krt9ctl {

using scene_notation::Members;

namespace {

class SceneWriter {
  public:
    explicit SceneWriter(const AccessibilityTree& tree)
        : tree_(tree), mainWindow_(MainWindow(tree)) {}

    SceneDump Write(const ApplicationFacts& facts, bool isFront);

  private:
    const TreeElement& At(std::size_t place) const { return tree_.Elements()[place]; }

    void WriteApplication(const ApplicationFacts& facts);
    void WriteTree();
    Members MembersOf(std::size_t place);
    void AddAttribute(std::size_t place, const std::string& name, CFTypeRef value,
                      Members& members);
    void AddMain(std::size_t place, Members& members) const;
    std::string AddressOf(std::size_t place) const;
    Json Describe(CFTypeRef element) const;

    const AccessibilityTree& tree_;
    std::optional<std::size_t> mainWindow_;
    SceneDump dump_;
};

SceneDump SceneWriter::Write(const ApplicationFacts& facts, bool isFront) {
    const std::string key = facts.bundleIdentifier.value_or(fmt::format("pid:{}", facts.pid));
    dump_.text =
        fmt::format("{{ \"front\": {},\n  \"applications\": [\n", isFront ? OneLine(key) : "null");
    WriteApplication(facts);
    dump_.text += "\n  ]\n}\n";
    return std::move(dump_);
}

void SceneWriter::WriteApplication(const ApplicationFacts& facts) {
    Members members;
    if (facts.bundleIdentifier) {
        members.Add("bundleID", *facts.bundleIdentifier);
    }
    // An empty name is written, too: without one, a scene derives it from the bundle identifier.
    const auto title = At(0).attributes.find("AXTitle");
    const auto name = title == At(0).attributes.end() ? std::nullopt : Utf8Of(title->second.get());
    if (name) {
        members.Add("name", *name);
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
    dump_.text += "    { " + members.Text() + ",\n      \"windows\": ";
    if (const auto error = tree_.WindowsError()) {
        dump_.text += OneLine({{"error", *error}}) + " }";
        return;
    }
    dump_.text += "[";
    WriteTree();
    dump_.text += "] }";
}

// Walks without recursion: an element is closed when the walk leaves it.
void SceneWriter::WriteTree() {
    scene_notation::ElementLines lines;
    std::vector<std::pair<std::size_t, std::size_t>> open = {{0, 0}};  // place, next child
    while (!open.empty()) {
        auto& [parent, next] = open.back();
        if (next == At(parent).children.size()) {
            if (parent != 0) {
                lines.Close();
            }
            open.pop_back();
            continue;
        }
        const std::size_t child = At(parent).children[next++];
        lines.Add(MembersOf(child), At(child).hasChildren);
        if (At(child).hasChildren) {
            open.emplace_back(child, 0);
        }
    }
    dump_.text += lines.Text();
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
    const auto written =
        SceneValueOf(value, name, [this](CFTypeRef element) { return Describe(element); });
    if (!written || !scene_notation::IsAttributeName(name)) {
        ++dump_.leftOutValues;
        return;
    }
    members.Add(name, *written);
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

std::string SceneWriter::AddressOf(std::size_t place) const {
    std::vector<std::size_t> path;
    for (; place != 0; place = At(place).parent) {
        path.push_back(At(place).position);
    }
    std::string address = path.empty() ? "/" : "";
    for (auto step = path.rbegin(); step != path.rend(); ++step) {
        address += fmt::format("/{}", *step);
    }
    return address;
}

Json SceneWriter::Describe(CFTypeRef element) const {
    const auto place = tree_.Find(element);
    Json described;
    described[scene_notation::tag::kElement] = place ? Json(AddressOf(*place)) : Json(nullptr);
    return described;
}

}  // namespace

SceneDump WriteScene(const AccessibilityTree& tree, const ApplicationFacts& facts, bool isFront) {
    return SceneWriter(tree).Write(facts, isFront);
}

}  // namespace krt9ctl
