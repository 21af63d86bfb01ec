// What the tools say of the driver's reach is what its search does.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "VEKCommon/OwnedReference.h"
#include "accessibility/DepthFirstSearch.h"
#include "accessibility/calls/AccessibilityCalls.h"
#include "tests/support/Paths.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/unit/tools/Carried.h"
#include "tools/FrontApplication.h"
#include "tools/Reach.h"

namespace krt9ctl {
namespace {

using test_support::ScriptedDesktop;

// The index of the element at which the driver's search ends; nothing when it finds none.
std::optional<std::size_t> FoundByTheDriver(const AccessibilityTree& tree,
                                            const std::string& identifier, CFStringRef role) {
    const OwnedReference<CFStringRef> sought(
        CFStringCreateWithCString(kCFAllocatorDefault, identifier.c_str(), kCFStringEncodingUTF8));
    const OwnedReference<CFArrayRef> attributes(CreateAttributesFromWindows());
    auto windows = ReadWindows(tree.Elements()[0].element.get());
    const auto found = FindElementInWindows(QueryFromWindows(sought.get(), role, attributes.get()),
                                            (*windows).get(), nullptr);
    return found ? tree.Find(found.get()) : std::nullopt;
}

// The number of identifiers that were compared. A search that finds nothing walks the whole tree:
// `searchesInVain` limits how many of those there are.
std::size_t CompareWithTheDriver(const std::string& scene, CFStringRef role, int searchesInVain) {
    const ScriptedDesktop session(scene);
    const auto read = AccessibilityTree::Read(FrontApplication()->pid, {});
    const auto& tree = std::get<AccessibilityTree>(read);
    const ElementList list = ListElements(tree);
    const auto judgements = JudgeReach(list, role);
    std::map<std::string, std::optional<std::size_t>> reached;
    for (std::size_t place = 0; place < list.size(); ++place) {
        if (!list[place].identifier || judgements[place].reach == Reach::otherName) {
            continue;
        }
        auto& expected = reached[*list[place].identifier];
        if (judgements[place].reach == Reach::reached) {
            EXPECT_EQ(expected, std::nullopt) << *list[place].identifier << " twice";
            expected = place;
        }
    }
    std::size_t compared = 0;
    int inVain = 0;
    for (const auto& [identifier, place] : reached) {
        if (place || inVain++ < searchesInVain) {
            EXPECT_EQ(FoundByTheDriver(tree, identifier, role), place) << identifier;
            ++compared;
        }
    }
    return compared;
}

TEST(Reach, InEverySceneOfAnEditorIsThatOfTheDriversSearch) {
    std::size_t compared = 0;
    for (const auto& entry : std::filesystem::directory_iterator(KRT9_SCENES)) {
        if (entry.path().extension() != ".json") {
            continue;
        }
        std::ostringstream scene;
        scene << std::ifstream(entry.path()).rdbuf();
        SCOPED_TRACE(entry.path());
        for (CFStringRef role : {kVEK_AXRole_AllValidRoles, kAXTextFieldRole, kAXRadioGroupRole,
                                 kAXLayoutAreaRole, kAXGroupRole}) {
            compared += CompareWithTheDriver(scene.str(), role, 4);
        }
    }
    EXPECT_GT(compared, 100U);
}

TEST(Reach, InAnOddTreeIsThatOfTheDriversSearch) {
    const std::string scene = R"({"front": "a.b", "applications": [{"bundleID": "a.b", "windows": [
        {"AXRole": "AXWindow", "AXIdentifier": "_NS:1", "AXChildren": [
          {"AXRole": "AXButton", "AXIdentifier": "_NS:2"},
          {"AXIdentifier": "_NS:3", "AXChildren": [{"AXRole": "AXButton", "AXIdentifier": "_NS:4"}]},
          {"AXRole": "AXTable", "AXIdentifier": "_NS:5", "AXChildren": [
            {"AXRole": "AXGroup", "AXIdentifier": "_NS:6", "AXChildren": [
              {"AXRole": "AXButton", "AXIdentifier": "_NS:7"}]},
            {"AXRole": "AXButton", "AXIdentifier": "_NS:2"},
            {"AXRole": "AXButton", "AXIdentifier": "_NS:8"}]},
          {"AXRole": "AXScrollArea", "AXChildren": [
            {"AXRole": "AXSplitGroup", "AXChildren": [
              {"AXRole": "AXCheckBox", "AXIdentifier": "_NS:9"},
              {"AXRole": "AXSlider", "AXIdentifier": "_NS:8"},
              {"AXRole": "AXTextField", "AXSubrole": "AXSearchField", "AXIdentifier": "_NS:10"},
              {"AXRole": "AXTextField", "AXIdentifier": "_NS:11"}]}]}]},
        {"AXRole": "AXGroup", "AXIdentifier": "_NS:12", "AXChildren": [
          {"AXRole": "AXGroup", "AXIdentifier": "_NS:13", "AXChildren":
            {"array": [{"element": "/1"}, {"element": "/0/2/0"}, {"element": "/1/0"}]}},
          {"AXRole": "AXButton", "AXIdentifier": "_NS:9"},
          {"AXRole": "AXButton", "AXIdentifier": "_NS:10"}]}]}]})";
    for (CFStringRef role :
         {kVEK_AXRole_AllValidRoles, kAXTextFieldRole, kAXTableRole, kAXGroupRole}) {
        EXPECT_EQ(CompareWithTheDriver(scene, role, 13), 13U);
    }
}

// _NS:7 lies in a table, but a group lists the group around it as well.
TEST(Reach, IsThatOfAnyElementThatListsAChild) {
    const ScriptedDesktop session(R"({"front": "a.b", "applications": [{"bundleID": "a.b",
        "windows": [{"AXRole": "AXWindow", "AXChildren": [
          {"AXRole": "AXTable", "AXChildren": [{"AXRole": "AXGroup", "AXChildren": [
            {"AXRole": "AXButton", "AXIdentifier": "_NS:7"}]}]},
          {"AXRole": "AXGroup", "AXChildren": {"array": [{"element": "/0/0/0"}]}}]}]}]})");
    EXPECT_EQ(Carried({"find", "_NS:7"}).out, "+ /0/0/0/0 AXButton _NS:7\n");
}

TEST(Reach, NeedsTheNameThatARequestsNumberMakes) {
    ElementList list(6);
    list[1].role = "AXWindow";
    const char* const names[] = {"_NS:7", "_NS:07", "7", "_NS:4294967296"};
    for (std::size_t i = 0; i < 4; ++i) {
        list[i + 2].parent = 1;
        list[i + 2].role = "AXButton";
        list[i + 2].identifier = names[i];
    }
    const auto judgements = JudgeReach(list);
    EXPECT_EQ(judgements[2].reach, Reach::reached);
    for (std::size_t i = 3; i < 6; ++i) {
        EXPECT_EQ(judgements[i].reach, Reach::otherName) << *list[i].identifier;
    }
}

}  // namespace
}  // namespace krt9ctl
