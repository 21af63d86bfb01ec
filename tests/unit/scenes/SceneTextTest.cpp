// The layout of a scene's text.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "scenes/notation/SceneText.h"

namespace scene_notation {
namespace {

// The handle of an element is its index; the first one is the root.
struct NumberedTree {
    std::vector<std::vector<std::size_t>> children;

    const std::vector<std::size_t>& Children(std::size_t element) const {
        return children[element];
    }
    // The second element has the attribute without any child.
    bool HasChildren(std::size_t element) const {
        return !children[element].empty() || element == 1;
    }
    static Members MembersOf(std::size_t element) {
        Members members;
        if (element != 4) {
            members.Add("AXTitle", std::to_string(element));
        }
        return members;
    }
};

TEST(SceneText, HasOneElementALineAndEachBeforeItsContent) {
    const NumberedTree tree{{{1, 2}, {}, {3, 4}, {}, {5}, {}}};
    EXPECT_EQ(LinesBelow(std::size_t{0}, tree).Text(), R"(
        { "AXTitle": "1", "AXChildren": [] },
        { "AXTitle": "2", "AXChildren": [
          { "AXTitle": "3" },
          { "AXChildren": [
            { "AXTitle": "5" }] }] })");
}

TEST(SceneText, OfADeepTreeDoesNotRecurse) {
    constexpr std::size_t kDeep = 50000;
    NumberedTree tree;
    for (std::size_t element = 1; element <= kDeep; ++element) {
        tree.children.push_back({element});
    }
    tree.children.emplace_back();
    const ElementLines lines = LinesBelow(std::size_t{0}, tree);
    EXPECT_EQ(std::count(lines.Text().begin(), lines.Text().end(), '\n'), kDeep);
}

TEST(SceneText, HasTheSessionBeforeTheApplications) {
    Members facts;
    facts.Add("bundleID", "a.b");
    facts.Add("pid", 5);
    SceneText text;
    text.Add("front", "a.b");
    text.Add("trusted", true);
    text.AddApplication(facts, ElementLines());
    text.AddApplication(facts, Json{{"error", -25204}});
    const std::string scene = text.Finish();
    EXPECT_EQ(scene, R"({ "front": "a.b",
  "trusted": true,
  "applications": [
    { "bundleID": "a.b", "pid": 5,
      "windows": [] },
    { "bundleID": "a.b", "pid": 5,
      "windows": {"error":-25204} }
  ]
}
)");
    EXPECT_EQ(WithoutLineBreaks(scene),
              R"({ "front": "a.b","trusted": true,"applications": [{ "bundleID": "a.b", )"
              R"("pid": 5,"windows": [] },{ "bundleID": "a.b", "pid": 5,"windows": )"
              R"({"error":-25204} }]})");
}

TEST(SceneText, WithoutAnApplicationIsAScene) {
    SceneText text;
    text.Add("front", nullptr);
    EXPECT_EQ(text.Finish(), "{ \"front\": null,\n  \"applications\": [\n  ]\n}\n");
}

TEST(SceneText, ReplacesWhatIsNotUtf8) {
    Members members;
    members.Add("AXTitle", "a\xFF");
    EXPECT_EQ(members.Text(), "\"AXTitle\": \"a\xEF\xBF\xBD\"");
}

}  // namespace
}  // namespace scene_notation
