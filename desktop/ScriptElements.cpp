// Commands about elements, and about what an editing application shows.

#include "desktop/Address.h"
#include "desktop/Behaviour.h"
#include "desktop/MisbehaviourNotation.h"
#include "desktop/SceneReader.h"
#include "desktop/Script.h"
#include "desktop/Selection.h"
#include "desktop/Timecode.h"
#include "scenes/notation/Fields.h"
#include "scenes/notation/Json.h"

namespace desktop {

using namespace scene_notation;

namespace {

// The name in a row: the first text in it, of a cell or of a field in a cell.
std::string ClipName(const Element& row) {
    for (const Element* each = &row; each != nullptr; each = NextInPreOrder(*each, row)) {
        if (const auto text = each->Text("AXValue"); !text.empty()) {
            return std::string(text);
        }
    }
    return {};
}

EditorPlaces& EditorOf(Application* application) {
    if (application == nullptr || !application->editor) {
        throw SceneError("application", "it has no \"editor\" in its scene");
    }
    return *application->editor;
}

}  // namespace

std::string Script::Set(const Json& command) {
    ExpectOnly(command, "command",
               {"command", "at", "application", "element", "attribute", "value"});
    Element& element = NamedElement(command);
    const std::string& attribute =
        ExpectText(Required(command, "attribute", "command"), "attribute");
    ExpectAttributeName(attribute, "attribute");
    const Json& value = Required(command, "value", "command");
    ExpectShallow(value, "value");
    Model& model = desktop_.model_;
    Application& application = *model.ApplicationWithPid(element.pid);
    if (attribute == "AXChildren" && value.is_array()) {
        throw SceneError("value", "use \"insert\" and \"remove\" to change children");
    }
    if (attribute == "AXMain" && element.parent == &application.root && value.is_boolean()) {
        if (value.get<bool>()) {
            application.mainWindow = &element;
        } else if (application.mainWindow == &element) {
            application.mainWindow = nullptr;
        }
        return kDone;
    }
    SetFromScene(model, element, attribute, value, "value");
    return kDone;
}

std::string Script::Insert(const Json& command) {
    ExpectOnly(command, "command",
               {"command", "at", "application", "parent", "position", "element"});
    Element& parent = NamedElement(command, "parent");
    const Json* position = Field(command, "position");
    const std::int64_t index = position == nullptr
                                   ? static_cast<std::int64_t>(parent.children.size())
                                   : ExpectInteger(*position, "position", 0);
    const Json& source = Required(command, "element", "command");
    Element& added = SceneReader(desktop_.model_)
                         .AddElement(parent, static_cast<std::size_t>(index), source, "element");
    desktop_.model_.arena.Remove(parent, "AXChildren");
    return OneLine(nlohmann::ordered_json{{"ok", true}, {"element", AddressOf(added)}});
}

std::string Script::Remove(const Json& command) {
    ExpectOnly(command, "command", {"command", "at", "application", "element", "attribute"});
    Element& element = NamedElement(command);
    if (const Json* attribute = Field(command, "attribute")) {
        desktop_.model_.arena.Remove(element, ExpectText(*attribute, "attribute"));
        return kDone;
    }
    if (element.parent == nullptr) {
        throw SceneError("element", "an application is ended with \"quit\" or \"kill\"");
    }
    Application& application = *desktop_.model_.ApplicationWithPid(element.pid);
    if (application.mainWindow == &element) {
        application.mainWindow = nullptr;
    }
    desktop_.model_.arena.Destroy(element);
    return kDone;
}

std::string Script::Press(const Json& command) {
    ExpectOnly(command, "command", {"command", "at", "application", "element", "action"});
    const Element& element = NamedElement(command);
    const Json* action = Field(command, "action");
    desktop_.PerformNow(element.Reference(),
                        action == nullptr ? "AXPress" : ExpectText(*action, "action"));
    return kDone;
}

std::string Script::Misbehave(const Json& command) {
    ExpectOnly(command, "command", {"command", "at", "application", "element", "misbehaviour"});
    Application* application = ApplicationOrFront(command);
    if (application == nullptr) {
        throw SceneError("application", "no application is in front; name one");
    }
    Element& bearer =
        Field(command, "element") == nullptr ? application->root : NamedElement(command);
    const Json& source = Required(command, "misbehaviour", "command");
    ExpectShallow(source, "misbehaviour");
    bearer.Details().misbehaviour =
        source.is_null()
            ? Misbehaviour()
            : ReadMisbehaviour(source, "misbehaviour", ResolverFor(desktop_.model_, application));
    return kDone;
}

std::string Script::SelectClip(const Json& command) {
    ExpectOnly(command, "command", {"command", "at", "application", "row", "clip"});
    Application* application = ApplicationOrFront(command);
    const EditorPlaces& editor = EditorOf(application);
    Element& table = ResolveAddress(*application, editor.clipTable, "editor.clipTable");
    std::vector<Element*> rows;
    std::string name;
    for (Element* row : table.children) {
        if (row->Role() != "AXRow") {
            continue;
        }
        const Json* index = Field(command, "row");
        const Json* clip = Field(command, "clip");
        if ((index != nullptr && *index == RowPositionInParent(*row)) ||
            (clip != nullptr && *clip == ClipName(*row))) {
            rows = {row};
            name = ClipName(*row);
            break;
        }
    }
    const bool none = Field(command, "row") != nullptr && command["row"].is_null();
    if (rows.empty() && !none) {
        throw SceneError("command", "give a \"row\" or a \"clip\" of the table, or null as row");
    }
    std::vector<Element*> texts;
    for (const std::string& place : editor.clipNames) {
        texts.push_back(&ResolveAddress(*application, place, "editor.clipNames"));
    }
    SetSelectedRows(table, rows);
    for (Element* text : texts) {
        desktop_.model_.arena.Set(*text, "AXValue", Answer::Of({name}));
    }
    return OneLine(nlohmann::ordered_json{{"ok", true}, {"clip", name}});
}

std::string Script::MovePlayhead(const Json& command) {
    ExpectOnly(command, "command", {"command", "at", "application", "timecode", "frames"});
    Application* application = ApplicationOrFront(command);
    const EditorPlaces& editor = EditorOf(application);
    Element& playhead = ResolveAddress(*application, editor.playhead, "editor.playhead");
    std::string timecode;
    if (const Json* given = Field(command, "timecode")) {
        timecode = ExpectText(*given, "timecode");
    } else {
        constexpr std::int64_t kMost = 1000000000;
        const std::int64_t frames =
            ExpectInteger(Required(command, "frames", "command"), "frames", -kMost, kMost);
        timecode =
            TimecodeAfter(playhead.Text("AXValueDescription"), frames, editor.framesPerSecond);
    }
    desktop_.model_.arena.Set(playhead, "AXValueDescription", Answer::Of({timecode}));
    return OneLine(nlohmann::ordered_json{{"ok", true}, {"timecode", timecode}});
}

}  // namespace desktop
