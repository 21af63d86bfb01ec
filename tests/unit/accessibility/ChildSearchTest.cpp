#include <syslog.h>

#include "platform/Testing/LogCapture.h"
#include "tests/unit/accessibility/DriverBesideEditor.h"

namespace {

using platform_testing::LogLine;
using testing::ElementsAre;

class ChildSearch : public DriverBesideEditor {
  protected:
    std::string Find(const std::vector<ElementReference>& children, const char* identifier,
                     CFStringRef role = kVEK_AXRole_AllValidRoles, bool debug = false) {
        auto array = ArrayOf(children);
        AXUIElementRef element = nullptr;
        bool found = driver_->CopyChildWithID(array.get(), String(identifier).get(), element, role,
                                              false, debug);
        EXPECT_EQ(found, element != nullptr);
        return TitleOf(element);
    }
    ElementReference Control(const std::string& title, const std::string& role = "AXButton") {
        return Titled(editor_.Add(role, "_NS:1"), title);
    }
    ElementReference Group(const std::vector<ElementReference>& children) {
        return editor_.Add("AXGroup", "", children);
    }
};

TEST_F(ChildSearch, IsDepthFirstAndPreOrder) {
    EXPECT_EQ(Find({Group({Group({Control("deep")})}), Control("later")}, "_NS:1"), "deep");
}

TEST_F(ChildSearch, AnyValidRoleIncludesNoTextField) {
    for (const char* role : {"AXButton", "AXCheckBox", "AXTable", "AXRadioGroup"}) {
        EXPECT_EQ(Find({Control(role, role)}, "_NS:1"), role);
    }
    EXPECT_EQ(Find({Control("field", "AXTextField")}, "_NS:1"), "(none)");
}

TEST_F(ChildSearch, ATextFieldIsFoundByItsRoleSearchFieldsIncluded) {
    auto searchField = Control("search field", "AXTextField");
    editor_.Set(searchField, "AXSubrole", Text("AXSearchField"));
    EXPECT_EQ(Find({searchField}, "_NS:1", CFSTR("AXTextField")), "search field");
}

TEST_F(ChildSearch, AMatchNestedInATableIsNotReached) {
    EXPECT_EQ(Find({editor_.Add("AXTable", "_NS:2", {Control("inside")})}, "_NS:1"), "(none)");
}

TEST_F(ChildSearch, GroupsSplitGroupsAndScrollAreasAreDescendedInto) {
    for (const char* role : {"AXGroup", "AXSplitGroup", "AXScrollArea"}) {
        EXPECT_EQ(Find({editor_.Add(role, "", {Control("inside")})}, "_NS:1"), "inside") << role;
    }
}

TEST_F(ChildSearch, SkipsWhatCannotBeReadOrIsNoElement) {
    auto broken = Group({Control("inside")});
    auto noRole = Group({Control("inside")});
    editor_.Set(noRole, "AXRole", Number(1));
    auto noChildren = editor_.Add("AXGroup");
    editor_.Set(noChildren, "AXChildren", Text("x"));
    auto array = Array(List({Null(), Number(1), Value{broken}, Value{noRole}, Value{noChildren},
                             Value{Control("after")}}));
    editor_.Fail(broken, kAXErrorInvalidUIElement);
    AXUIElementRef element = nullptr;
    EXPECT_TRUE(driver_->CopyChildWithID(array.get(), CFSTR("_NS:1"), element, CFSTR("AXButton"),
                                         true, false));
    EXPECT_EQ(TitleOf(element), "after");
}

TEST_F(ChildSearch, ANullArrayHoldsNothing) {
    AXUIElementRef element = nullptr;
    EXPECT_FALSE(driver_->CopyChildWithID(nullptr, CFSTR("_NS:1"), element, CFSTR("AXButton"),
                                          false, false));
}

TEST_F(ChildSearch, TheFoundElementIsBorrowedAndOutlivesTheWalk) {
    auto array = ArrayOf({Group({Group({Control("deep")})})});
    AXUIElementRef element = nullptr;
    ASSERT_TRUE(driver_->CopyChildWithID(array.get(), CFSTR("_NS:1"), element, CFSTR("AXButton"),
                                         false, false));
    EXPECT_EQ(TitleOf(element), "deep");
    auto kept = Retained(element);
    DrainPool();
    EXPECT_EQ(CFGetRetainCount(kept.get()), 1) << "nobody else is left to release it";
}

TEST_F(ChildSearch, ReadsEachChildInOneExchange) {
    auto array = ArrayOf({Group({editor_.Add("AXButton")}), Control("found"), Control("unread")});
    EXPECT_EQ(ExchangesOf([&] {
                  AXUIElementRef element = nullptr;
                  driver_->CopyChildWithID(array.get(), CFSTR("_NS:1"), element, CFSTR("AXButton"),
                                           false, false);
              }),
              3U);
}

TEST_F(ChildSearch, SurvivesDepthAndCycles) {
    ElementReference element = Control("at the bottom");
    for (int depth = 0; depth < Scaled(10'000); ++depth) {
        element = Group({element});
    }
    EXPECT_EQ(Find({element}, "_NS:1"), "at the bottom");
    auto cycle = Group({});
    editor_.Set(cycle, "AXChildren", Elements({Group({cycle}), Control("beside the cycle")}));
    EXPECT_EQ(Find({cycle}, "_NS:1"), "beside the cycle");
}

TEST_F(ChildSearch, AGroupListedTwiceIsWalkedTwice) {
    auto group = Group({editor_.Add("AXButton")});
    auto array = ArrayOf({group, editor_.Add("AXButton"), group});
    EXPECT_EQ(ExchangesOf([&] {
                  AXUIElementRef element = nullptr;
                  driver_->CopyChildWithID(array.get(), CFSTR("_NS:1"), element, CFSTR("AXButton"),
                                           false, false);
              }),
              2U + 1U + 2U);
}

TEST_F(ChildSearch, LogsStepByStepWhenToldTo) {
    auto plain = editor_.Add("AXButton");
    editor_.Set(plain, "AXIdentifier", Number(3));
    auto array = ArrayOf({editor_.Add("AXImage"), plain,
                          Group({editor_.Add("AXButton", "_NS:2"), Control("found")})});
    platform_testing::LogCapture console;
    AXUIElementRef element = nullptr;
    driver_->CopyChildWithID(array.get(), CFSTR("_NS:1"), element, CFSTR("AXButton"), false, true);
    EXPECT_THAT(console.ConsoleTexts(),
                ElementsAre("CopyChildWithID _NS:1", " child with ID 3 role = AXButton",
                            "  found elem with role AXGroup", "CopyChildWithID _NS:1",
                            " child with ID _NS:2 role = AXButton", "  id = _NS:2",
                            " child with ID _NS:1 role = AXButton", "  id = _NS:1",
                            "  returning element with id = _NS:1 at index 1",
                            "   recursion found element with id _NS:1"));
    EXPECT_THAT(console.Lines(),
                testing::Contains(LogLine{LogLine::Log::system, LOG_EMERG, "  got children"}))
        << "this one line goes to the system log, at the emergency level";
}

TEST_F(ChildSearch, LogsAMissOnEachLevel) {
    auto array = ArrayOf({Group({editor_.Add("AXRow")})});
    platform_testing::LogCapture console;
    AXUIElementRef element = nullptr;
    driver_->CopyChildWithID(array.get(), CFSTR("_NS:1"), element, CFSTR("AXButton"), false, true);
    EXPECT_THAT(console.ConsoleTexts(),
                ElementsAre("CopyChildWithID _NS:1", "  found elem with role AXGroup",
                            "CopyChildWithID _NS:1", " didn't find element with ID _NS:1",
                            " didn't find element with ID _NS:1"));
}

TEST_F(ChildSearch, LogsNothingOtherwise) {
    platform_testing::LogCapture console;
    Find({Group({Control("found")})}, "_NS:1");
    Find({Group({Control("found")})}, "_NS:2");
    EXPECT_THAT(console.Lines(), testing::IsEmpty());
}

// --- One level, by role and description
// ------------------------------------------------------------

class ChildByDescription : public DriverBesideEditor {
  protected:
    ElementReference Child(const std::string& title, const std::string& role,
                           const Value& description) {
        ElementReference element = Titled(editor_.Add(role), title);
        editor_.Set(element, "AXDescription", description);
        return element;
    }
    std::string Find(CFArrayRef children, bool debug = false) {
        OwnedReference<AXUIElementRef> found(driver_->CopyChildWithRoleAndDescription(
            children, CFSTR("AXButton"), CFSTR("Play"), debug));
        return TitleOf(found.get());
    }
};

TEST_F(ChildByDescription, TheFirstWithBothIsFound) {
    auto array = ArrayOf({Child("other role", "AXImage", Text("Play")),
                          Child("other description", "AXButton", Text("Stop")),
                          Child("wanted", "AXButton", Text("Play")),
                          Child("too late", "AXButton", Text("Play"))});
    EXPECT_EQ(Find(array.get()), "wanted");
}

TEST_F(ChildByDescription, ADescriptionThatIsNoTextIsPassedOver) {
    auto array = ArrayOf({Child("number", "AXButton", Number(1)), Child("null", "AXButton", Null()),
                          Child("error", "AXButton", Failing(-25212)),
                          Child("wanted", "AXButton", Text("Play"))});
    EXPECT_EQ(Find(array.get()), "wanted");
}

TEST_F(ChildByDescription, LooksAtOneLevelOnly) {
    auto group = editor_.Add("AXGroup", "", {Child("inside", "AXButton", Text("Play"))});
    EXPECT_EQ(Find(ArrayOf({group}).get()), "(none)");
}

TEST_F(ChildByDescription, IsRetainedForTheCaller) {
    auto array = ArrayOf({Child("wanted", "AXButton", Text("Play"))});
    CFTypeRef inArray = CFArrayGetValueAtIndex(array.get(), 0);
    CFIndex before = CFGetRetainCount(inArray);
    OwnedReference<AXUIElementRef> found(driver_->CopyChildWithRoleAndDescription(
        array.get(), CFSTR("AXButton"), CFSTR("Play"), false));
    EXPECT_EQ(found.get(), inArray);
    EXPECT_EQ(CFGetRetainCount(inArray), before + 1);
}

TEST_F(ChildByDescription, AnEmptyOrNullArrayIsAMissAndLoggedAsOne) {
    {
        platform_testing::LogCapture console;
        EXPECT_EQ(Find(nullptr, true), "(none)");
        EXPECT_THAT(console.ConsoleTexts(),
                    ElementsAre("CopyChildWithRoleAndDescription children = NULL", "childCount = 0",
                                "     something went horribly wrong"));
    }
    platform_testing::LogCapture console;
    EXPECT_EQ(Find(Array(List({})).get(), true), "(none)");
    EXPECT_THAT(console.ConsoleTexts(),
                ElementsAre("childCount = 0", "     something went horribly wrong"));
}

TEST_F(ChildByDescription, LogsEachChildWhenToldTo) {
    auto broken = editor_.Add("AXButton");
    auto noRole = editor_.Add("AXButton");
    editor_.Unset(noRole, "AXRole");
    auto array = ArrayOf({broken, noRole, Child("wanted", "AXButton", Text("Play"))});
    editor_.Fail(broken, kAXErrorInvalidUIElement);
    platform_testing::LogCapture console;
    EXPECT_EQ(Find(array.get(), true), "wanted");
    EXPECT_THAT(
        console.ConsoleTexts(),
        ElementsAre("childCount = 3", testing::MatchesRegex(" element 0 = 0x[0-9a-f]+"),
                    testing::MatchesRegex(" element 1 = 0x[0-9a-f]+"), "  got multiple values",
                    testing::MatchesRegex(" element 2 = 0x[0-9a-f]+"), "  got multiple values",
                    "   elem 2: got role AXButton"));
}

TEST_F(ChildByDescription, LogsNothingOtherwise) {
    auto array =
        ArrayOf({Child("first", "AXImage", Text("Play")), Child("second", "AXButton", Text("Stop")),
                 Child("wanted", "AXButton", Text("Play"))});
    platform_testing::LogCapture console;
    EXPECT_EQ(Find(array.get()), "wanted");
    EXPECT_EQ(Find(nullptr), "(none)");
    EXPECT_THAT(console.Lines(), testing::IsEmpty());
}

TEST_F(ChildByDescription, LogsTheRoleOfTheFirstChildToo) {
    auto array = ArrayOf({Child("wanted", "AXButton", Text("Play"))});
    platform_testing::LogCapture console;
    EXPECT_EQ(Find(array.get(), true), "wanted");
    EXPECT_EQ(console.ConsoleTexts().back(), "   elem 0: got role AXButton");
}

TEST_F(ChildByDescription, LogsTheAddressOfEachChildAndNullForWhatIsNone) {
    auto array = ArrayOf({editor_.Add("AXImage"), editor_.Add("AXImage")});
    platform_testing::LogCapture console;
    EXPECT_EQ(Find(array.get(), true), "(none)");
    const std::vector<std::string> lines = console.ConsoleTexts();
    for (CFIndex index : {0, 1}) {
        char line[64];
        snprintf(line, sizeof line, " element %ld = %p", index,
                 CFArrayGetValueAtIndex(array.get(), index));
        EXPECT_THAT(lines, testing::Contains(line));
    }
}

TEST_F(ChildByDescription, LogsMultipleValuesOnlyOfAChildThatYieldedSome) {
    auto empty = Child("yields none", "AXButton", Text("Play"));
    editor_.AnswerEmpty(empty);
    auto array = ArrayOf({empty});
    platform_testing::LogCapture console;
    EXPECT_EQ(Find(array.get(), true), "(none)");
    EXPECT_THAT(console.ConsoleTexts(),
                ElementsAre("childCount = 1", testing::StartsWith(" element 0 = "),
                            "     something went horribly wrong"));
}

TEST_F(ChildSearch, AChildThatYieldsNoValuesIsPassedOver) {
    auto empty = Control("yields none");
    editor_.AnswerEmpty(empty);
    EXPECT_EQ(Find({empty, Control("after")}, "_NS:1"), "after");
}

TEST_F(ChildSearch, UncachingAPathLeavesTheElementCacheUnchanged) {
    CFMutableDictionaryRef cache = DriverInspector::AXUtils(*driver_).CachedElementsForApplication(
        CFSTR("com.apple.FinalCut"));
    CFDictionarySetValue(cache, CFSTR("_NS:1"), cache);
    driver_->UncachePathToElementID(CFSTR("_NS:1"));
    EXPECT_EQ(CFDictionaryGetCount(cache), 2);
}

}  // namespace
