#include "accessibility/DepthFirstSearch.h"
#include "accessibility/VEK_C_AXUtils.h"
#include "platform/Testing/LogCapture.h"
#include "tests/unit/accessibility/AccessibilityTest.h"

namespace {

using desktop_link::Operation;
using desktop_link::Request;

class ElementSearch : public AccessibilityTest {
  protected:
    // Title of what a search for any valid role finds.
    std::string Find(const char* identifier, CFStringRef role = kVEK_AXRole_AllValidRoles) {
        OwnedReference<AXUIElementRef> found(
            utils_.CopyElement(String(identifier).get(), role, false, ""));
        return TitleOf(found.get());
    }

    ElementReference Control(const std::string& title, const std::string& role = "AXButton") {
        return Titled(editor_.Add(role, "_NS:1"), title);
    }
    ElementReference Group(const std::vector<ElementReference>& children) {
        return editor_.Add("AXGroup", "", children);
    }

    VEK_C_AXUtils utils_;
};

TEST_F(ElementSearch, AFrontApplicationWithoutWindowsYieldsNothing) {
    editor_.SetWindows({});
    EXPECT_EQ(Find("_NS:1"), "(none)");
}

TEST_F(ElementSearch, MissingPermissionYieldsNothing) {
    editor_.ShowWindow({Control("here")});
    editor_.Fail(editor_.Application(), kAXErrorAPIDisabled);
    EXPECT_EQ(Find("_NS:1"), "(none)");
}

TEST_F(ElementSearch, WithoutAFrontBundleIdentifierNothingIsAsked) {
    editor_.ShowWindow({Control("here")});
    test_support::SetFrontApplication({nullptr, nullptr, EditorTree::kProcess});
    EXPECT_EQ(
        ExchangesOf([&] {
            EXPECT_EQ(utils_.CopyElement(CFSTR("_NS:1"), CFSTR("AXButton"), false, ""), nullptr);
            EXPECT_EQ(utils_.CopyChild(0, CFSTR(""), CFSTR("_NS:1"), CFSTR("AXButton")), nullptr);
            EXPECT_EQ(utils_.copyFrontApplicationWindowList(false, ""), nullptr);
        }),
        0U);
}

TEST_F(ElementSearch, ProcessIdentifierMinusOneIsNoApplication) {
    editor_.ShowWindow({Control("here")});
    test_support::SetFrontApplication({"com.apple.FinalCut", "10.4.6", -1});
    EXPECT_EQ(
        ExchangesOf([&] { EXPECT_EQ(utils_.copyFrontApplicationWindowList(false, ""), nullptr); }),
        0U);
}

TEST_F(ElementSearch, AnyApplicationInFrontIsSearched) {
    editor_.ShowWindow({Control("here")});
    test_support::SetFrontApplication({"com.apple.Finder", nullptr, EditorTree::kProcess});
    EXPECT_EQ(Find("_NS:1"), "here");
}

TEST_F(ElementSearch, TheEarlierWindowWins) {
    auto first = editor_.Add("AXWindow", "", {Group({Control("first window, deeper")})});
    auto second = editor_.Add("AXWindow", "", {Control("second window, shallower")});
    editor_.SetWindows({first, second});
    EXPECT_EQ(Find("_NS:1"), "first window, deeper");
}

TEST_F(ElementSearch, AMatchDeepInAnEarlierSiblingWinsOverALaterSibling) {
    editor_.ShowWindow({Group({Group({Control("deep")})}), Control("later sibling")});
    EXPECT_EQ(Find("_NS:1"), "deep");
}

TEST_F(ElementSearch, AnElementIsTestedBeforeItsOwnSubtree) {
    auto inner = Titled(editor_.Add("AXGroup", "_NS:1"), "inner");
    editor_.ShowWindow({Titled(editor_.Add("AXGroup", "_NS:1", {inner}), "outer")});
    EXPECT_EQ(Find("_NS:1", CFSTR("AXGroup")), "outer");
}

TEST_F(ElementSearch, TheWalkIsDepthFirstAndPreOrder) {
    auto a1 = editor_.Add("AXButton");
    auto a2 = editor_.Add("AXButton");
    auto a = Group({a1, a2});
    auto b1 = editor_.Add("AXButton");
    auto b = Group({b1});
    auto c = editor_.Add("AXButton");
    auto window = editor_.ShowWindow({a, b, c});
    desktop_.Restart();
    EXPECT_EQ(Find("_NS:1"), "(none)");
    EXPECT_THAT(editor_.Reads(),
                testing::ElementsAre(editor_.Application(), window, a, a1, a2, b, b1, c));
}

TEST_F(ElementSearch, OnlyGroupsSplitGroupsAndScrollAreasAreDescendedInto) {
    for (const char* role : {"AXGroup", "AXSplitGroup", "AXScrollArea"}) {
        editor_.ShowWindow({editor_.Add(role, "", {Control("inside")})});
        EXPECT_EQ(Find("_NS:1"), "inside") << role;
    }
    for (const char* role : {"AXTable", "AXLayoutArea", "AXWindow", "AXRadioGroup", "AXRow",
                             "AXButton", "AXTabGroup", "AXToolbar", "axgroup", ""}) {
        editor_.ShowWindow({editor_.Add(role, "", {Control("inside")})});
        EXPECT_EQ(Find("_NS:1"), "(none)") << role;
    }
}

TEST_F(ElementSearch, AnyValidRoleMeansTheFiveKindsOfControl) {
    for (const char* role : {"AXButton", "AXCheckBox", "AXTable", "AXTextField", "AXRadioGroup"}) {
        editor_.ShowWindow({Control(role, role)});
        EXPECT_EQ(Find("_NS:1"), role);
    }
    for (const char* role :
         {"AXStaticText", "AXGroup", "AXSlider", "AXLayoutArea", "AXWindow", "VEKAXAllRoles"}) {
        editor_.ShowWindow({Control(role, role)});
        EXPECT_EQ(Find("_NS:1"), "(none)") << role;
    }
}

TEST_F(ElementSearch, ASearchFieldIsNeverReturnedWhicheverRoleIsAskedFor) {
    auto searchField = Control("search field", "AXTextField");
    editor_.Set(searchField, "AXSubrole", Text("AXSearchField"));
    editor_.ShowWindow({searchField});
    EXPECT_EQ(Find("_NS:1"), "(none)");
    EXPECT_EQ(Find("_NS:1", CFSTR("AXTextField")), "(none)");
    editor_.ShowWindow({searchField, Control("after it", "AXTextField")});
    EXPECT_EQ(Find("_NS:1"), "after it");
}

TEST_F(ElementSearch, ATextFieldOfAnotherOrNoTextualSubroleIsReturned) {
    auto field = Control("field", "AXTextField");
    editor_.ShowWindow({field});
    for (const Value& subrole : {Text("AXSecureTextField"), Number(3), Null()}) {
        editor_.Set(field, "AXSubrole", subrole);
        EXPECT_EQ(Find("_NS:1"), "field");
    }
}

TEST_F(ElementSearch, TheSubroleOfOtherRolesDoesNotMatter) {
    auto button = Control("button");
    editor_.Set(button, "AXSubrole", Text("AXSearchField"));
    editor_.ShowWindow({button});
    EXPECT_EQ(Find("_NS:1"), "button");
}

TEST_F(ElementSearch, ARequestedRoleMatchesExactly) {
    editor_.ShowWindow({Control("text", "AXStaticText"), Control("area", "AXLayoutArea")});
    EXPECT_EQ(Find("_NS:1", CFSTR("AXLayoutArea")), "area");
    EXPECT_EQ(Find("_NS:1", CFSTR("AXLayout")), "(none)");
    EXPECT_EQ(Find("_NS:1", CFSTR("AXButton")), "(none)");
}

TEST_F(ElementSearch, IdentifiersMatchExactly) {
    editor_.ShowWindow({Control("control")});
    for (const char* other : {"_NS:12", "_ns:1", "_NS:", "", " _NS:1"}) {
        EXPECT_EQ(Find(other), "(none)") << other;
    }
}

TEST_F(ElementSearch, AChildWithoutUsableRoleIsSkippedWithItsSubtree) {
    for (const Value& role : {Failing(kAXErrorNoValue), Null(), Number(1), List({})}) {
        auto odd = editor_.Add("AXGroup", "", {Control("inside")});
        editor_.Set(odd, "AXRole", role);
        editor_.ShowWindow({odd, Control("after")});
        EXPECT_EQ(Find("_NS:1"), "after");
    }
}

TEST_F(ElementSearch, AChildThatYieldsNoValuesIsSkippedWithItsSubtree) {
    auto empty = Group({Control("inside")});
    editor_.AnswerEmpty(empty);
    editor_.ShowWindow({empty, Control("after")});
    EXPECT_EQ(Find("_NS:1"), "after");
}

TEST_F(ElementSearch, AnIdentifierThatIsNoTextMatchesNothing) {
    for (const Value& identifier : {Failing(kAXErrorNoValue), Null(), Number(1), List({})}) {
        auto odd = editor_.Add("AXButton");
        editor_.Set(odd, "AXIdentifier", identifier);
        editor_.ShowWindow({odd, Control("after")});
        EXPECT_EQ(Find("_NS:1"), "after");
    }
}

TEST_F(ElementSearch, ChildrenThatAreNoArrayAreNotDescendedInto) {
    for (const Value& children : {Failing(kAXErrorCannotComplete), Null(), Number(1), Text("x"),
                                  Truth(true), PointAt(1, 2), List({})}) {
        auto odd = editor_.Add("AXGroup");
        editor_.Set(odd, "AXChildren", children);
        editor_.ShowWindow({odd, Control("after")});
        EXPECT_EQ(Find("_NS:1"), "after");
    }
}

TEST_F(ElementSearch, ArraysThatHoldOtherThingsThanElementsAreWalkedAllTheSame) {
    auto window = editor_.ShowWindow({});
    editor_.Set(window, "AXChildren",
                List({Null(), Number(5), Text("text"), List({}), Failing(kAXErrorFailure),
                      PointAt(0, 0), Value{Control("the element")}}));
    EXPECT_EQ(Find("_NS:1"), "the element");
    editor_.Set(editor_.Application(), "AXWindows", List({Null(), Text("text"), Value{window}}));
    EXPECT_EQ(Find("_NS:1"), "the element");
}

TEST_F(ElementSearch, AWindowListOfAnotherTypeIsNone) {
    for (const Value& windows : {Null(), Number(1), Text("x"), Failing(kAXErrorNoValue)}) {
        editor_.Set(editor_.Application(), "AXWindows", windows);
        EXPECT_EQ(Find("_NS:1"), "(none)");
        EXPECT_EQ(utils_.copyFrontApplicationWindowList(false, ""), nullptr);
    }
}

TEST_F(ElementSearch, AWindowWhoseChildrenCannotBeReadIsPassedOver) {
    auto closed = editor_.Add("AXWindow");
    auto odd = editor_.Add("AXWindow");
    editor_.Set(odd, "AXChildren", Text("none"));
    auto good = editor_.Add("AXWindow", "", {Control("in the last window")});
    editor_.Fail(closed, kAXErrorInvalidUIElement);
    editor_.SetWindows({closed, odd, good});
    EXPECT_EQ(Find("_NS:1"), "in the last window");
}

TEST_F(ElementSearch, AChildThatFailsIsSkippedAndTheNextOneRead) {
    for (AXError error : {kAXErrorCannotComplete, kAXErrorInvalidUIElement, kAXErrorFailure}) {
        auto broken = Group({Control("inside")});
        editor_.ShowWindow({broken, Control("after")});
        editor_.Fail(broken, error);
        EXPECT_EQ(Find("_NS:1"), "after") << error;
    }
}

TEST_F(ElementSearch, CostsOneExchangeForTheListOneForEachWindowAndOneForEachChildVisited) {
    auto first = editor_.Add("AXWindow", "", {Group({editor_.Add("AXButton", "_NS:7")})});
    auto second = editor_.Add("AXWindow", "", {Control("found"), editor_.Add("AXButton")});
    editor_.SetWindows({first, second});
    EXPECT_EQ(ExchangesOf([&] {
                  OwnedReference<AXUIElementRef> found(
                      utils_.CopyElement(CFSTR("_NS:1"), CFSTR("AXButton"), false, ""));
                  EXPECT_TRUE(found);
              }),
              1U + 2U + 3U)
        << "the sibling after the match must not be read";
}

TEST_F(ElementSearch, TheWindowListIsOneExchange) {
    editor_.ShowWindow({});
    EXPECT_EQ(
        ExchangesOf([&] {
            OwnedReference<CFArrayRef> windows(utils_.copyFrontApplicationWindowList(false, ""));
            ASSERT_TRUE(windows);
            EXPECT_EQ(CFArrayGetCount(windows.get()), 1);
        }),
        1U);
}

TEST_F(ElementSearch, TheOverloadWithAThirdStringFindsNothing) {
    editor_.ShowWindow({Control("here")});
    EXPECT_EQ(ExchangesOf([&] {
                  EXPECT_EQ(utils_.CopyElement(CFSTR("_NS:1"), CFSTR("AXButton"), CFSTR("x"), true,
                                               "tag"),
                            nullptr);
              }),
              0U);
}

TEST_F(ElementSearch, AFoundElementBelongsToTheCallerAlone) {
    editor_.ShowWindow({Group({Control("here")})});
    OwnedReference<AXUIElementRef> found(
        utils_.CopyElement(CFSTR("_NS:1"), CFSTR("AXButton"), false, ""));
    DrainPool();
    EXPECT_EQ(CFGetRetainCount(found.get()), 1);
}

TEST_F(ElementSearch, ThePassThroughFlagDecidesNothing) {
    auto children = ArrayOf({Group({Control("here")})});
    for (bool passThrough : {false, true}) {
        AXUIElementRef element = nullptr;
        EXPECT_TRUE(utils_.CopyChild(element, CFSTR("_NS:1"), CFSTR("AXButton"), children.get(),
                                     passThrough, false));
        EXPECT_EQ(TitleOf(OwnedReference<AXUIElementRef>(element).get()), "here");
    }
}

TEST_F(ElementSearch, AMissLeavesTheOutArgumentAlone) {
    auto children = ArrayOf({Control("here")});
    auto mark = Object(editor_.Add("AXButton"));
    AXUIElementRef element = mark.get();
    EXPECT_FALSE(
        utils_.CopyChild(element, CFSTR("_NS:2"), CFSTR("AXButton"), children.get(), false, false));
    EXPECT_FALSE(
        utils_.CopyChild(element, CFSTR("_NS:1"), CFSTR("AXButton"), nullptr, false, false));
    EXPECT_EQ(element, mark.get());
}

// --- Child by index --------------------------------------------------------------------------

TEST_F(ElementSearch, ChildByIndexIsTheChildOfTheFoundElement) {
    auto group = editor_.Add("AXRadioGroup", "_NS:1",
                             {Titled(editor_.Add("AXRadioButton"), "zero"),
                              Titled(editor_.Add("AXRadioButton"), "one")});
    editor_.ShowWindow({group});
    for (long index : {0L, 1L}) {
        OwnedReference<AXUIElementRef> child(
            utils_.CopyChild(index, CFSTR("ignored"), CFSTR("_NS:1"), CFSTR("AXRadioGroup")));
        EXPECT_EQ(TitleOf(child.get()), index == 0 ? "zero" : "one");
    }
}

TEST_F(ElementSearch, ChildByAnIndexThatIsNotThereIsAbsent) {
    auto group = editor_.Add("AXRadioGroup", "_NS:1", {editor_.Add("AXRadioButton")});
    editor_.ShowWindow({group});
    for (long index : {1L, 2L, -1L, 1L << 40, std::numeric_limits<long>::min(),
                       std::numeric_limits<long>::max()}) {
        EXPECT_EQ(utils_.CopyChild(index, CFSTR(""), CFSTR("_NS:1"), CFSTR("AXRadioGroup")),
                  nullptr)
            << index;
    }
    for (const Value& children : {List({}), Null(), Text("x"), List({Null()}), List({Number(1)})}) {
        editor_.Set(group, "AXChildren", children);
        EXPECT_EQ(utils_.CopyChild(0, CFSTR(""), CFSTR("_NS:1"), CFSTR("AXRadioGroup")), nullptr);
    }
}

TEST_F(ElementSearch, ChildByIndexOfAnElementThatIsNotThereIsAbsent) {
    editor_.ShowWindow({});
    EXPECT_EQ(utils_.CopyChild(0, CFSTR(""), CFSTR("_NS:1"), CFSTR("AXRadioGroup")), nullptr);
}

// --- Applications that misbehave ---------------------------------------------------------------

TEST_F(ElementSearch, AnApplicationThatHangsInTheMiddleEndsInNothing) {
    editor_.ShowWindow({Group({editor_.Add("AXButton"), Control("never reached")})});
    int exchanges = 0;
    desktop_.onRequest = [&](const Request&) {
        if (++exchanges == 4) {
            editor_.Hang();
        }
    };
    EXPECT_EQ(utils_.CopyElement(CFSTR("_NS:1"), CFSTR("AXButton"), false, ""), nullptr);
    EXPECT_EQ(exchanges, 5);
}

TEST_F(ElementSearch, AnApplicationThatDiesInTheMiddleEndsInNothing) {
    editor_.ShowWindow({Group({editor_.Add("AXButton"), Control("never reached")})});
    int exchanges = 0;
    desktop_.onRequest = [&](const Request&) {
        if (++exchanges == 4) {
            editor_.Die();
        }
    };
    EXPECT_EQ(utils_.CopyElement(CFSTR("_NS:1"), CFSTR("AXButton"), false, ""), nullptr);
}

TEST_F(ElementSearch, ATreeThatChangesInTheMiddleIsWalkedAsItWasRead) {
    auto group = Group({Control("removed meanwhile")});
    editor_.ShowWindow({group, Control("after")});
    desktop_.onRequest = [&](const Request& request) {
        if (request.element == group) {
            editor_.Set(group, "AXChildren", List({}));
        }
    };
    EXPECT_EQ(Find("_NS:1"), "after");
}

TEST_F(ElementSearch, AnElementThatIsDestroyedAfterItWasListedIsSkipped) {
    auto doomed = Control("doomed");
    auto group = Group({doomed, Control("survivor")});
    editor_.ShowWindow({group});
    desktop_.onRequest = [&](const Request& request) {
        if (request.element == doomed) {
            editor_.Fail(doomed, kAXErrorInvalidUIElement);
        }
    };
    EXPECT_EQ(Find("_NS:1"), "survivor");
}

TEST_F(ElementSearch, TheFrontApplicationMayChangeInTheMiddle) {
    auto group = Group({Control("here")});
    editor_.ShowWindow({group});
    desktop_.onRequest = [&](const Request& request) {
        if (request.element == group) {
            test_support::SetFrontApplication({nullptr, nullptr, -1});
        }
    };
    EXPECT_EQ(Find("_NS:1"), "here");
}

// --- Depth, width, cycles ----------------------------------------------------------------------

TEST_F(ElementSearch, FindsAnElementNestedTenThousandDeep) {
    ElementReference element = Control("at the bottom");
    for (int depth = 0; depth < Scaled(10'000); ++depth) {
        element = Group({element});
    }
    editor_.ShowWindow({element});
    EXPECT_EQ(Find("_NS:1"), "at the bottom");
}

TEST_F(ElementSearch, FindsAnElementNestedAMillionDeep) {
    // Element kTop + n is the only child of the one before it.
    constexpr std::uint64_t kTop = 1'000'000'000;
    constexpr std::uint64_t kBottom = kTop + static_cast<std::uint64_t>(Scaled(1'000'000));
    const ElementReference window = editor_.ShowWindow({});
    const auto read = [&](ElementReference element, const std::string& attribute) {
        if (element == window) {
            return Elements({ElementReference{EditorTree::kProcess, kTop}});
        }
        if (attribute == "AXRole") {
            return Text(element.id == kBottom ? "AXButton" : "AXGroup");
        }
        if (attribute == "AXChildren" && element.id != kBottom) {
            return Elements({ElementReference{EditorTree::kProcess, element.id + 1}});
        }
        return Text(attribute == "AXIdentifier" && element.id == kBottom ? "_NS:1" : attribute);
    };
    desktop_.replyInstead = [&](const Request& request) {
        if (request.element == editor_.Application()) {
            return desktop_->Handle(0, request);
        }
        desktop_link::Reply reply;
        for (const std::string& attribute : request.names) {
            reply.values.push_back(read(request.element, attribute));
        }
        return std::optional(std::move(reply));
    };
    EXPECT_EQ(Find("_NS:1"), "AXTitle");
}

TEST_F(ElementSearch, FindsTheLastOfAHundredThousandElements) {
    std::vector<ElementReference> groups;
    const int groupCount = Scaled(1'000);
    const nlohmann::json button = {{"AXRole", "AXButton"}, {"AXIdentifier", "_NS:99"}};
    for (int group = 0; group < groupCount; ++group) {
        groups.push_back(editor_.AddTree(
            {{"AXRole", "AXGroup"}, {"AXChildren", std::vector<nlohmann::json>(99, button)}}));
    }
    groups.push_back(Control("the last"));
    editor_.ShowWindow(groups);
    EXPECT_EQ(ExchangesOf([&] { EXPECT_EQ(Find("_NS:1"), "the last"); }),
              2U + 100U * static_cast<unsigned>(groupCount) + 1U + 1U);
}

TEST_F(ElementSearch, AnElementThatIsItsOwnChildEndsTheDescent) {
    auto group = Group({});
    editor_.Set(group, "AXChildren", Elements({group, editor_.Add("AXButton")}));
    editor_.ShowWindow({group, Control("after")});
    EXPECT_EQ(ExchangesOf([&] { EXPECT_EQ(Find("_NS:1"), "after"); }), 2U + 4U + 1U);
}

TEST_F(ElementSearch, AnElementThatIsItsOwnAncestorIsNotDescendedIntoAgain) {
    auto outer = Group({});
    auto inner = Group({outer, Control("below the ancestor")});
    editor_.Set(outer, "AXChildren", Elements({Group({inner})}));
    editor_.ShowWindow({outer});
    EXPECT_EQ(Find("_NS:1"), "below the ancestor");
}

// --- Elements that are listed several times ------------------------------------------------------

// The window, twice the group with its two, and what is between and behind: a recursive search that
// knows nothing of visits reads the same.
TEST_F(ElementSearch, AGroupThatAWindowListsTwiceIsWalkedTwice) {
    auto group = Group({editor_.Add("AXButton"), Group({editor_.Add("AXButton")})});
    auto between = editor_.Add("AXButton");
    editor_.ShowWindow({group, between, group});
    EXPECT_EQ(ExchangesOf([&] { EXPECT_EQ(Find("_NS:1"), "(none)"); }), 2U + 4U + 1U + 4U);
}

TEST_F(ElementSearch, AControlThatAppearsBetweenTwoVisitsOfItsGroupIsFound) {
    auto group = Group({editor_.Add("AXButton")});
    auto between = editor_.Add("AXButton");
    auto control = Control("appeared");
    editor_.ShowWindow({group, between, group});
    desktop_.onRequest = [&](const Request& request) {
        if (request.element == between) {
            editor_.Set(group, "AXChildren", Elements({control}));
        }
    };
    EXPECT_EQ(Find("_NS:1"), "appeared");
}

// It was on the path when it was met first, and no longer is when it is met again.
TEST_F(ElementSearch, AGroupThatListsItselfIsWalkedAgainWhereItsParentListsIt) {
    auto group = Group({});
    editor_.Set(group, "AXChildren", Elements({group, editor_.Add("AXButton")}));
    editor_.ShowWindow({group, group});
    EXPECT_EQ(ExchangesOf([&] { EXPECT_EQ(Find("_NS:1"), "(none)"); }), 2U + 3U + 3U);
}

TEST_F(ElementSearch, AnAncestorListedBySeveralDescendantsEndsTheDescentInEach) {
    auto outer = Group({});
    auto inner = Group({outer});
    auto other = Group({outer});
    editor_.Set(outer, "AXChildren", Elements({inner, other}));
    editor_.ShowWindow({outer});
    EXPECT_EQ(ExchangesOf([&] { EXPECT_EQ(Find("_NS:1"), "(none)"); }), 2U + 5U);
}

// Each group lists the next one twice: without a bound the walk would read 2 to the power of 30
// elements. Those that are new are searched all the same, so the control behind them is found.
TEST_F(ElementSearch, DiamondsNestedThirtyDeepCostNoMoreThanTheBoundAllows) {
    ElementReference group = Group({editor_.Add("AXButton")});
    for (int depth = 1; depth < 30; ++depth) {
        group = Group({group, group});
    }
    editor_.ShowWindow({group, Group({Control("behind")})});
    constexpr unsigned kFirstDescents = 30;
    constexpr unsigned kRepeated = kMostRepeatedDescents;
    const unsigned long exchanges = ExchangesOf([&] { EXPECT_EQ(Find("_NS:1"), "behind"); });
    EXPECT_GT(exchanges, kRepeated);
    EXPECT_LE(exchanges, 2 + 2 * (kFirstDescents + kRepeated) + 2 + 1);
}

// The group itself, and as often again as it may be; then it is read and not searched any more.
TEST_F(ElementSearch, AGroupIsWalkedAgainAThousandTimesAndNoMore) {
    constexpr unsigned kTimes = 1'005;
    auto group = Group({editor_.Add("AXButton")});
    editor_.ShowWindow(std::vector<ElementReference>(kTimes, group));
    EXPECT_EQ(ExchangesOf([&] { EXPECT_EQ(Find("_NS:1"), "(none)"); }), 2U + kTimes + 1U + 1'000U);
}

TEST_F(ElementSearch, GroupsThatAllHoldEachOtherAreSearchedAsOftenAsTheBoundAllows) {
    constexpr unsigned kGroups = 30;
    std::vector<ElementReference> groups;
    for (unsigned group = 0; group < kGroups; ++group) {
        groups.push_back(Group({}));
    }
    for (ElementReference group : groups) {
        editor_.Set(group, "AXChildren", Elements(groups));
    }
    editor_.ShowWindow(groups);
    EXPECT_EQ(ExchangesOf([&] { EXPECT_EQ(Find("_NS:1"), "(none)"); }),
              2U + kGroups + (kGroups + 1'000U) * kGroups);
}

// Each search may repeat as many descents as the one before it.
TEST_F(ElementSearch, TheBoundIsOfOneSearchAndOfOneWindow) {
    auto group = Group({editor_.Add("AXButton")});
    auto window = editor_.Add("AXWindow");
    editor_.Set(window, "AXChildren", Elements(std::vector<ElementReference>(1'005, group)));
    editor_.SetWindows({window, window});
    for (int search = 0; search < 2; ++search) {
        EXPECT_EQ(ExchangesOf([&] { EXPECT_EQ(Find("_NS:1"), "(none)"); }),
                  1U + 2U * (1U + 1'005U + 1U + 1'000U));
    }
}

}  // namespace
