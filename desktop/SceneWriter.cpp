#include "desktop/SceneWriter.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "desktop/Address.h"
#include "desktop/MisbehaviourNotation.h"
#include "desktop/Selection.h"
#include "scenes/notation/Names.h"
#include "scenes/notation/SceneText.h"
#include "scenes/notation/ValueWriting.h"

namespace desktop {

using nlohmann::ordered_json;
using namespace scene_notation;

namespace {

class SceneWriter {
  public:
    explicit SceneWriter(Model& model) : model_(model) {}

    std::string Write() {
        AddSession();
        for (const auto& application : model_.applications) {
            AddApplication(*application);
        }
        return text_.Finish();
    }

  private:
    void AddSession() {
        auto screens = ordered_json::array();
        for (const desktop_link::Rect& screen : model_.screens) {
            screens.push_back({{"frame", WriteAnswer(Answer::Of({screen}), "AXFrame", {})}});
        }
        text_.Add("trusted", model_.trusted);
        text_.Add("screens", screens);
        text_.Add("pointer", WritePosition(model_.pointer));
        text_.Add("messagingTimeout", WriteCoordinate(model_.messagingTimeout));
        text_.Add("activationGap", WriteCoordinate(model_.activationGap));
        text_.Add("front", model_.front == nullptr ? ordered_json(nullptr)
                                                   : ordered_json(model_.NameOf(*model_.front)));
        text_.Add("midi", model_.midi.Describe());
        text_.Add("script", model_.script);
    }

    void AddApplication(const Application& application) {
        const Members facts = FactsOf(application);
        // Nothing can be read of a dead application, whatever it answered before.
        const Answer* override = application.dead ? nullptr : application.root.Stored("AXWindows");
        if (override != nullptr && application.root.children.empty()) {
            text_.AddApplication(facts, Write(application, *override, "AXWindows"));
            return;
        }
        const struct {
            const SceneWriter& writer;
            const Application& application;

            const auto& Children(const Element* element) const { return element->children; }
            bool HasChildren(const Element* element) const { return element->hasChildren; }
            Members MembersOf(const Element* element) const {
                return writer.MembersOf(application, *element);
            }
        } tree{*this, application};
        text_.AddApplication(facts, LinesBelow(&application.root, tree));
    }

    Members FactsOf(const Application& application) const {
        Members facts;
        if (application.bundleIdentifier) {
            facts.Add("bundleID", *application.bundleIdentifier);
        }
        facts.Add("name", application.name);
        facts.Add("pid", application.pid);
        if (application.info) {
            facts.Add("info", *application.info);
        }
        if (!application.localizations.empty()) {
            facts.Add("localizations", application.localizations);
        }
        if (application.hung) {
            facts.Add("hung", true);
        }
        if (application.dead) {
            facts.Add("dead", true);
        }
        if (application.editor) {
            facts.Add("editor", DescribeEditor(*application.editor));
        }
        AddMisbehaviour(application, application.root, facts);
        return facts;
    }

    Members MembersOf(const Application& application, const Element& element) const {
        Members members;
        for (const Attribute* attribute : InOrder(element)) {
            if (!HidesTree(application, element, *attribute->name)) {
                members.Add(*attribute->name,
                            Write(application, attribute->answer, *attribute->name));
            }
        }
        AddTreeAttributes(application, element, members);
        if (element.details != nullptr && element.details->actions) {
            members.Add("actions", *element.details->actions);
        }
        if (element.details != nullptr && element.details->settable) {
            members.Add("settable", *element.details->settable);
        }
        AddMisbehaviour(application, element, members);
        return members;
    }

    static std::vector<const Attribute*> InOrder(const Element& element) {
        std::vector<const Attribute*> attributes;
        for (const Attribute& attribute : element.attributes) {
            attributes.push_back(&attribute);
        }
        std::sort(attributes.begin(), attributes.end(), [](const auto* left, const auto* right) {
            return AttributeComesBefore(*left->name, *right->name);
        });
        return attributes;
    }

    static void AddTreeAttributes(const Application& application, const Element& element,
                                  Members& members) {
        const bool window = element.parent == &application.root;
        if (window && application.mainWindow == &element) {
            members.Add("AXMain", true);
        } else if (window && application.mainWindow == nullptr &&
                   element.Stored("AXMain") == nullptr && PositionInParent(element) == 0) {
            members.Add("AXMain", false);  // else the first window would become the main one
        }
        if (const auto* rows = SelectedRows(element)) {
            auto indices = ordered_json::array();
            for (const Element* row : *rows) {
                indices.push_back(PositionInParent(*row));
            }
            members.Add("AXSelectedRows", indices);
        }
    }

    // True when what the tree holds under this name has to be written, too.
    static bool HidesTree(const Application& application, const Element& element,
                          std::string_view attribute) {
        if (&element == &application.root) {
            return attribute == "AXWindows" && !application.dead && !element.children.empty();
        }
        return (attribute == "AXChildren" && element.hasChildren) ||
               (attribute == "AXSelectedRows" && SelectedRows(element) != nullptr) ||
               (attribute == "AXMain" && application.mainWindow == &element);
    }

    // What hides a part of the tree is written as a rule for reading, after the existing rules: of
    // two members with one name, a scene would keep only the last.
    static Misbehaviour WithHidingAnswers(const Application& application, const Element& element) {
        const Misbehaviour* own = element.OwnMisbehaviour();
        Misbehaviour misbehaviour = own == nullptr ? Misbehaviour() : *own;
        for (const Attribute& attribute : element.attributes) {
            auto& rules = misbehaviour.reads;
            const auto place = std::find_if(rules.begin(), rules.end(), [&](const ReadRule& rule) {
                return rule.name >= *attribute.name;
            });
            const bool ruled = place != rules.end() && place->name == *attribute.name;
            if (!ruled && HidesTree(application, element, *attribute.name)) {
                rules.insert(place, ReadRule{{*attribute.name, 0, {}}, attribute.answer, {}});
            }
        }
        return misbehaviour;
    }

    void AddMisbehaviour(const Application& application, const Element& element,
                         Members& members) const {
        const Misbehaviour misbehaviour = WithHidingAnswers(application, element);
        if (!misbehaviour.Empty()) {
            members.Add("misbehaviour", WriteMisbehaviour(misbehaviour, Describer(application)));
        }
    }

    ordered_json Write(const Application& application, const Answer& answer,
                       const std::string& attribute) const {
        return WriteAnswer(answer, attribute, Describer(application));
    }

    ElementDescriber Describer(const Application& application) const {
        return [this, &application](const desktop_link::ElementReference& reference) {
            return DescribeElement(model_, &application, reference);
        };
    }

    static ordered_json DescribeEditor(const EditorPlaces& editor) {
        return {{"clipTable", editor.clipTable},
                {"clipNames", editor.clipNames},
                {"playhead", editor.playhead},
                {"framesPerSecond", editor.framesPerSecond}};
    }

    Model& model_;
    SceneText text_;
};

}  // namespace

std::string WriteScene(Model& model) {
    return SceneWriter(model).Write();
}

}  // namespace desktop
