// The lines that a search writes to the console log when it is told to.
#include "accessibility/VEK_C_AXUtils.h"
#include "platform/Testing/LogCapture.h"
#include "tests/support/FrameworkAnswers.h"
#include "tests/unit/accessibility/AccessibilityTest.h"

namespace {

using testing::ElementsAre;

class SearchLog : public AccessibilityTest {
  protected:
    std::vector<std::string> LinesOfCopyElement(const char* identifier, const char* role,
                                                bool debug = true) {
        platform_testing::LogCapture console;
        OwnedReference<AXUIElementRef> found(
            utils_.CopyElement(String(identifier).get(), String(role).get(), debug, "tag"));
        return console.ConsoleTexts();
    }
    std::vector<std::string> LinesOfWindowList() {
        platform_testing::LogCapture console;
        OwnedReference<CFArrayRef> windows(utils_.copyFrontApplicationWindowList(true, "tag"));
        return console.ConsoleTexts();
    }

    VEK_C_AXUtils utils_;
};

TEST_F(SearchLog, AHitBelowAGroupIsToldStepByStep) {
    auto sought = editor_.Add("AXButton", "_NS:1");
    auto group = editor_.Add("AXGroup", "", {editor_.Add("AXButton", "_NS:5"), sought});
    editor_.ShowWindow({editor_.Add("AXCheckBox"), group});
    EXPECT_THAT(
        LinesOfCopyElement("_NS:1", "VEKAXAllRoles"),
        ElementsAre(
            "(tag) copyElement(_NS:1)", "  rebuilding path",
            "CopyChild (_NS:1, VEKAXAllRoles) level = 0", "  got Child 0",
            "        role AXCheckBox is valid", "            child has no ID", "  got Child 1",
            "        role AXGroup is not valid", "            wrong element- checking children",
            "             there are 2 children", "CopyChild (_NS:1, VEKAXAllRoles) level = 1",
            "  got Child 0", "        role AXButton is valid", "          checking id _NS:5",
            "  got Child 1", "        role AXButton is valid", "          checking id _NS:1",
            "  returning element with id = _NS:1 at index 1",
            "  returning element with id = _NS:1 at index 1 retain count = 2",
            "   recursion found element with id _NS:1",
            "    ***FOUND IT (_NS:1)  retain count 1***"));
}

// References besides those of the list of children and the result are counted, too.
TEST_F(SearchLog, TheCountOfAHitInAListIsThatOfTheObjectInIt) {
    auto children = ArrayOf({editor_.Add("AXRow"), editor_.Add("AXButton", "_NS:1")});
    const auto holder =
        Retained(static_cast<AXUIElementRef>(CFArrayGetValueAtIndex(children.get(), 1)));
    platform_testing::LogCapture console;
    AXUIElementRef element = nullptr;
    utils_.CopyChild(element, CFSTR("_NS:1"), CFSTR("AXButton"), children.get(), false, true);
    OwnedReference<AXUIElementRef> owned(element);
    ASSERT_FALSE(console.ConsoleTexts().empty());
    EXPECT_EQ(console.ConsoleTexts().back(),
              "  returning element with id = _NS:1 at index 1 retain count = 3");
}

// The element in a window's own list of children: the list is released by the time of the line.
TEST_F(SearchLog, TheCountOfAHitIsTakenAfterTheListsAreReleased) {
    editor_.ShowWindow({editor_.Add("AXButton", "_NS:1")});
    const auto identifier = String("_NS:1");
    const auto heldTwice = Retained(identifier.get());
    platform_testing::LogCapture console;
    const OwnedReference<AXUIElementRef> found(
        utils_.CopyElement(identifier.get(), CFSTR("AXButton"), true, "tag"));
    ASSERT_THAT(console.ConsoleTexts(), testing::Not(testing::IsEmpty()));
    EXPECT_EQ(console.ConsoleTexts().back(), "    ***FOUND IT (_NS:1)  retain count 1***");
}

TEST_F(SearchLog, AMissIsToldAtTheEnd) {
    editor_.ShowWindow({});
    EXPECT_THAT(
        LinesOfCopyElement("_NS:1", "AXTable"),
        ElementsAre("(tag) copyElement(_NS:1)", "  rebuilding path",
                    "CopyChild (_NS:1, AXTable) level = 0", "   element _NS:1 not found!!!"));
}

TEST_F(SearchLog, TheLevelStartsAnewInEachWindow) {
    auto first = editor_.Add("AXWindow", "", {editor_.Add("AXGroup", "", {editor_.Add("AXRow")})});
    auto second = editor_.Add("AXWindow", "", {editor_.Add("AXRow")});
    editor_.SetWindows({first, second});
    std::vector<std::string> levels;
    for (const std::string& line : LinesOfCopyElement("_NS:1", "AXTable")) {
        if (line.starts_with("CopyChild")) {
            levels.push_back(line);
        }
    }
    EXPECT_THAT(levels, ElementsAre("CopyChild (_NS:1, AXTable) level = 0",
                                    "CopyChild (_NS:1, AXTable) level = 1",
                                    "CopyChild (_NS:1, AXTable) level = 0"));
}

TEST_F(SearchLog, TheLevelIsTheOneThatWasSetAndIsRestored) {
    auto children = ArrayOf({editor_.Add("AXButton", "_NS:1")});
    utils_.SetDebugLevel(5);
    for (const char* identifier : {"_NS:1", "_NS:2"}) {
        platform_testing::LogCapture console;
        AXUIElementRef element = nullptr;
        utils_.CopyChild(element, String(identifier).get(), CFSTR("AXButton"), children.get(),
                         false, true);
        OwnedReference<AXUIElementRef> owned(element);
        EXPECT_EQ(console.ConsoleTexts().at(0),
                  "CopyChild (" + std::string(identifier) + ", AXButton) level = 5");
    }
}

TEST_F(SearchLog, AContainerWithoutReadableChildrenIsToldWithoutTheirNumber) {
    editor_.ShowWindow({editor_.Add("AXScrollArea")});
    EXPECT_THAT(LinesOfCopyElement("_NS:1", "AXTable"),
                testing::IsSupersetOf({"            wrong element- checking children"}));
    EXPECT_THAT(LinesOfCopyElement("_NS:1", "AXTable"),
                testing::Not(testing::Contains(testing::HasSubstr("there are"))));
}

TEST_F(SearchLog, ASkippedChildIsToldByItsIndexOnly) {
    auto broken = editor_.Add("AXButton", "_NS:1");
    editor_.ShowWindow({broken});
    editor_.Fail(broken, kAXErrorInvalidUIElement);
    EXPECT_THAT(LinesOfCopyElement("_NS:1", "AXButton"),
                ElementsAre("(tag) copyElement(_NS:1)", "  rebuilding path",
                            "CopyChild (_NS:1, AXButton) level = 0", "  got Child 0",
                            "   element _NS:1 not found!!!"));
}

TEST_F(SearchLog, AMissingWindowListIsTold) {
    EXPECT_THAT(
        LinesOfCopyElement("_NS:1", "AXButton"),
        ElementsAre("(tag) copyElement(_NS:1)", "  couldn't get application windows (_NS:1)"));
}

TEST_F(SearchLog, WithoutAFrontBundleIdentifierOnlyTheCallIsTold) {
    test_support::SetFrontApplication({nullptr, nullptr, 7});
    EXPECT_THAT(LinesOfCopyElement("_NS:1", "AXButton"), ElementsAre("(tag) copyElement(_NS:1)"));
    EXPECT_THAT(LinesOfWindowList(), ElementsAre("copyFrontApplicationWindowList tag"));
}

TEST_F(SearchLog, TheWindowListIsTold) {
    editor_.ShowWindow({});
    EXPECT_THAT(LinesOfWindowList(),
                ElementsAre("copyFrontApplicationWindowList tag", "tag rebuilding list"));
}

TEST_F(SearchLog, AnApplicationOfWhichNoElementCanBeMadeIsTold) {
    editor_.ShowWindow({});
    FrameworkAnswers::Current().applicationElements = false;
    EXPECT_THAT(LinesOfWindowList(),
                ElementsAre("copyFrontApplicationWindowList tag", "tag rebuilding list",
                            "CopyApplicationWindowList tag couldn't create application\n"));
    EXPECT_THAT(LinesOfCopyElement("_NS:1", "AXButton", false), ElementsAre());
    FrameworkAnswers::Current().applicationElements = true;
}

TEST_F(SearchLog, AFailingWindowListIsToldWithItsErrorInHexadecimal) {
    editor_.Fail(editor_.Application(), kAXErrorCannotComplete);
    EXPECT_THAT(LinesOfWindowList(),
                ElementsAre("copyFrontApplicationWindowList tag", "tag rebuilding list",
                            "CopyApplicationWindowList tag AXUIElementCopyAttributeValue err = "
                            "ffff9d8c\n"));
}

TEST_F(SearchLog, WithoutTheDebugFlagNothingIsLogged) {
    editor_.ShowWindow({editor_.Add("AXGroup", "", {editor_.Add("AXButton", "_NS:1")})});
    EXPECT_THAT(LinesOfCopyElement("_NS:1", "AXButton", false), ElementsAre());
    EXPECT_THAT(LinesOfCopyElement("_NS:2", "AXButton", false), ElementsAre());
    editor_.Fail(editor_.Application(), kAXErrorCannotComplete);
    EXPECT_THAT(LinesOfCopyElement("_NS:1", "AXButton", false), ElementsAre());
}

}  // namespace
