// The editor scenes: every control that observation needs is where a search reaches it.

#include "tests/support/ChildProcess.h"
#include "tests/support/EditorReleases.h"
#include "tests/support/Files.h"
#include "tests/support/Paths.h"
#include "tests/unit/desktop/Client.h"

namespace desktop {

namespace {

using test_support::EditorRelease;

bool HasRadioToggle(const EditorRelease& release) {
    return release.row < kProfile10_3;
}

class EditorScene : public testing::TestWithParam<EditorRelease> {
  protected:
    static std::string Text(const EditorRelease& release) {
        return test_support::ContentOf(KRT9_SCENES "/editor-" + std::string(release.scene) +
                                       ".json");
    }

    std::vector<ElementReference> Children(const ElementReference& element) const {
        std::vector<ElementReference> children;
        const Value value = client_.Read(element, "AXChildren");
        if (const auto* array = std::get_if<desktop_link::Array>(&value.content)) {
            for (const Value& child : *array) {
                children.push_back(std::get<ElementReference>(child.content));
            }
        }
        return children;
    }

    std::string String(const ElementReference& element, const char* attribute) const {
        const Value value = client_.Read(element, attribute);
        const auto* text = std::get_if<std::string>(&value.content);
        return text == nullptr ? "" : *text;
    }

    // Only groups, split groups and scroll areas are searched; the first match wins.
    std::optional<ElementReference> Search(const std::vector<ElementReference>& elements,
                                           const std::string& identifier,
                                           const std::string& role) const {
        for (const ElementReference& element : elements) {
            const std::string found = String(element, "AXRole");
            if (found == role && String(element, "AXIdentifier") == identifier) {
                return element;
            }
            if (found == "AXGroup" || found == "AXSplitGroup" || found == "AXScrollArea") {
                if (const auto below = Search(Children(element), identifier, role)) {
                    return below;
                }
            }
        }
        return std::nullopt;
    }

    ElementReference Reachable(const std::string& identifier, const std::string& role) const {
        for (const ElementReference& window : Children(client_.At("/"))) {
            if (const auto found = Search(Children(window), identifier, role)) {
                return *found;
            }
        }
        ADD_FAILURE() << "no search reaches the " << role << " " << identifier;
        return {};
    }

    Desktop desktop_{Text(GetParam())};
    Client client_{desktop_};
};

TEST_P(EditorScene, IsExactlyWhatItsScriptWrites) {
    const test_support::ProcessResult made =
        test_support::RunProcess(KRT9_PYTHON, {KRT9_MAKE_EDITOR_SCENE, GetParam().scene});
    EXPECT_EQ(made.status, 0) << made.standardError;
    EXPECT_TRUE(made.standardOutput == Text(GetParam()))
        << "scripts/make-editor-scene.py " << GetParam().scene
        << " writes another scene than the one in scenes/";
}

TEST_P(EditorScene, IsInFrontWithItsVersionAndHasHundredsOfElements) {
    const auto front = client_.Ask(Operation::hello)->session->frontApplication;
    ASSERT_TRUE(front && front->bundlePath);
    EXPECT_EQ(front->bundleIdentifier, "com.apple.FinalCut");
    EXPECT_THAT(test_support::ContentOf(*front->bundlePath + "/Contents/Info.plist"),
                testing::HasSubstr(std::string("<string>") + GetParam().scene + "<"));
    EXPECT_GT(client_.Do({{"command", "state"}})["elements"], 250);
}

TEST_P(EditorScene, TimelineIndexToggleIsReached) {
    const ElementReference toggle = Reachable(
        GetParam().timelineIndexToggle, HasRadioToggle(GetParam()) ? "AXRadioGroup" : "AXCheckBox");
    const bool radio = HasRadioToggle(GetParam());
    const ElementReference bearer = radio ? Children(toggle).at(0) : toggle;
    EXPECT_EQ(client_.Read(bearer, "AXValue"), Value{std::int64_t{1}});
    client_.Ask(Operation::performAction, bearer, {"AXPress"});
    EXPECT_EQ(client_.Read(bearer, "AXValue"), Value{std::int64_t{radio ? 1 : 0}});
}

TEST_P(EditorScene, SelectedClipIsSeenInItsTableAndItsTexts) {
    client_.Do({{"command", "selectClip"}, {"clip", "Gulls"}});
    const ElementReference table = Reachable(GetParam().clipTable, "AXTable");
    const Value selected = client_.Read(table, "AXSelectedRows");
    const auto& rows = std::get<desktop_link::Array>(selected.content);
    ASSERT_EQ(rows.size(), 1u);
    const ElementReference row = std::get<ElementReference>(rows[0].content);
    EXPECT_EQ(client_.Read(row, "AXIndex"), Value{std::int64_t{5}});
    ElementReference bearer = Children(row).at(0);
    if (GetParam().row == kProfile10_3) {
        bearer = Children(bearer).at(1);
        EXPECT_EQ(String(bearer, "AXRole"), "AXTextField");
    }
    EXPECT_EQ(String(bearer, "AXValue"), "Gulls");
    EXPECT_EQ(String(Reachable(GetParam().firstClipName, "AXStaticText"), "AXValue"), "Gulls");
    EXPECT_EQ(String(Reachable(GetParam().secondClipName, "AXStaticText"), "AXValue"), "Gulls");
}

TEST_P(EditorScene, PlayheadIsInTheTimelinesLayoutArea) {
    client_.Do({{"command", "playhead"}, {"timecode", "01:02:03:04"}});
    for (const ElementReference& child :
         Children(Reachable(GetParam().timecodeArea, "AXLayoutArea"))) {
        if (String(child, "AXRole") == "AXValueIndicator") {
            EXPECT_EQ(String(child, "AXDescription"), "Playhead");
            EXPECT_EQ(String(child, "AXValueDescription"), "01:02:03:04");
            return;
        }
    }
    ADD_FAILURE() << "the layout area has no value indicator";
}

TEST_P(EditorScene, ScriptPlaysWithoutAProblem) {
    client_.Do({{"command", "play"}});
    client_.Do({{"command", "advance"}, {"seconds", 60}});
    for (const json& entry : client_.Log()) {
        EXPECT_FALSE(entry.contains("problem")) << entry;
    }
    EXPECT_EQ(client_.Log().size(), 2u) << "two activations";
}

TEST_P(EditorScene, DumpLoadsAndDumpsTheSame) {
    const std::string dump = desktop_.Dump();
    EXPECT_EQ(Desktop(dump).Dump(), dump);
}

TEST(EditorReleases, StandInTheGuideToScenes) {
    const test_support::ProcessResult made =
        test_support::RunProcess(KRT9_PYTHON, {KRT9_MAKE_EDITOR_SCENE, "--table"});
    ASSERT_EQ(made.status, 0) << made.standardError;
    EXPECT_THAT(test_support::ContentOf(KRT9_SCENES "/../docs/scenes.md"),
                testing::HasSubstr(made.standardOutput))
        << "docs/scenes.md lacks the table that scripts/make-editor-scene.py --table prints";
}

INSTANTIATE_TEST_SUITE_P(Versions, EditorScene, testing::ValuesIn(test_support::kEditorReleases),
                         [](const auto& info) {
                             std::string name = info.param.scene;
                             std::replace(name.begin(), name.end(), '.', '_');
                             return name;
                         });

}  // namespace

}  // namespace desktop
