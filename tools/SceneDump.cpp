#include "tools/SceneDump.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "tools/SceneValue.h"
#include "tools/TreeAttributes.h"

namespace krt9ctl {

namespace {

// What tells elements apart comes first, the others by name.
std::size_t Rank(std::string_view name) {
    constexpr std::array<std::string_view, 7> kFirst = {
        "AXRole",        "AXSubrole", "AXIdentifier",      "AXTitle",
        "AXDescription", "AXValue",   "AXValueDescription"};
    return static_cast<std::size_t>(std::find(kFirst.begin(), kFirst.end(), name) - kFirst.begin());
}

// Other keys of an element in a scene are no attributes.
bool IsAttributeName(const std::string& name) {
    return !name.empty() && name[0] >= 'A' && name[0] <= 'Z';
}

// "key": value, "key": value ... of an object, without its braces.
class Members {
  public:
    void Add(const std::string& key, const Json& value) {
        text_ += text_.empty() ? "" : ", ";
        text_ += OneLine(key) + ": " + OneLine(value);
    }
    const std::string& Text() const { return text_; }

  private:
    std::string text_;
};

class SceneWriter {
  public:
    explicit SceneWriter(const AccessibilityTree& tree)
        : tree_(tree), mainWindow_(MainWindow(tree)) {}

    SceneDump Write(const ApplicationFacts& facts, bool isFront);

  private:
    const TreeElement& At(std::size_t place) const { return tree_.Elements()[place]; }

    void WriteApplication(const ApplicationFacts& facts);
    void WriteTree();
    void WriteElement(std::size_t place);
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
    if (const std::string name = TextAttribute(At(0), "AXTitle"); !name.empty()) {
        members.Add("name", name);
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
    // Deeper than this, indentation would outweigh the elements themselves.
    constexpr std::size_t kDeepestIndentation = 40;
    std::vector<std::pair<std::size_t, std::size_t>> open = {{0, 0}};  // place, next child
    while (!open.empty()) {
        auto& [parent, next] = open.back();
        if (next == At(parent).children.size()) {
            dump_.text += parent == 0 ? "" : "] }";
            open.pop_back();
            continue;
        }
        dump_.text += next == 0 ? "\n" : ",\n";
        const std::size_t child = At(parent).children[next++];
        dump_.text.append(6 + std::min(2 * open.size(), kDeepestIndentation), ' ');
        WriteElement(child);
        if (At(child).hasChildren) {
            open.emplace_back(child, 0);
        } else {
            dump_.text += " }";
        }
    }
}

// Up to and including the bracket of its children, when it has that attribute.
void SceneWriter::WriteElement(std::size_t place) {
    const TreeElement& element = At(place);
    std::vector<std::pair<std::size_t, const std::string*>> order;
    for (const auto& [name, value] : element.attributes) {
        order.emplace_back(Rank(name), &name);
    }
    std::stable_sort(order.begin(), order.end(),
                     [](const auto& left, const auto& right) { return left.first < right.first; });
    Members members;
    for (const auto& [rank, name] : order) {
        AddAttribute(place, *name, element.attributes.at(*name).get(), members);
    }
    AddMain(place, members);
    if (element.actions) {
        members.Add("actions", *element.actions);
    }
    dump_.text += "{ " + members.Text();
    if (element.hasChildren) {
        dump_.text += members.Text().empty() ? "\"AXChildren\": [" : ", \"AXChildren\": [";
    }
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
    if (!written || !IsAttributeName(name)) {
        ++dump_.leftOutValues;
        return;
    }
    members.Add(name, *written);
}

// One window of an application is its main one; where none is, the first one says so, else a scene
// would take it for the main one.
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
    described["element"] = place ? Json(AddressOf(*place)) : Json(nullptr);
    return described;
}

}  // namespace

SceneDump WriteScene(const AccessibilityTree& tree, const ApplicationFacts& facts, bool isFront) {
    return SceneWriter(tree).Write(facts, isFront);
}

}  // namespace krt9ctl
