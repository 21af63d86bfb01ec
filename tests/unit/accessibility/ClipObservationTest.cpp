#include "tests/unit/accessibility/AXUtilsInspector.h"
#include "tests/unit/accessibility/ObservationTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

SentMessage ClipName(const std::string& name) {
    return TextMessage(kJFSC, name);
}

class ClipObservation : public ObservationTest {
  protected:
    std::vector<SentMessage> Tick() {
        driver_->ObserveFCPXClipSelectionTask();
        return Sent();
    }
};

// --- Switching it on
// ---------------------------------------------------------------------------------

TEST_F(ClipObservation, IsOnWhileTheEditorIsInFront) {
    DriverInspector::LastClipRow(*driver_) = 3;
    driver_->ObserveFCPXClipSelectionChange();
    EXPECT_TRUE(DriverInspector::ObserveClipSelection(*driver_));
    EXPECT_EQ(LastClipName(), "");
    EXPECT_EQ(DriverInspector::LastClipRow(*driver_), -1);
}

TEST_F(ClipObservation, IsOffWhileAnotherApplicationIsInFront) {
    for (const char* other : {"com.apple.Finder", "com.apple.FinalCutTrial", "com.apple.finalcut",
                              "com.apple.FinalCu", ""}) {
        driver_->ObserveFCPXClipSelectionChange();
        test_support::SetFrontApplication({other, "10.4.6", EditorTree::kProcess});
        driver_->ObserveFCPXClipSelectionChange();
        EXPECT_FALSE(DriverInspector::ObserveClipSelection(*driver_)) << other;
        test_support::SetFrontApplication({"com.apple.FinalCut", "10.4.6", EditorTree::kProcess});
    }
}

TEST_F(ClipObservation, IsAlsoOnWhileTheFrontApplicationHasNoBundleIdentifier) {
    DriverInspector::ObserveClipSelection(*driver_) = false;
    test_support::SetFrontApplication({nullptr, nullptr, 7});
    driver_->ObserveFCPXClipSelectionChange();
    EXPECT_TRUE(DriverInspector::ObserveClipSelection(*driver_));
}

TEST_F(ClipObservation, StartingAgainSendsTheSameNameAgain) {
    ShowStaticText("_NS:100", Text("Interview"));
    EXPECT_THAT(Tick(), ElementsAre(ClipName("Interview")));
    EXPECT_THAT(Tick(), IsEmpty());
    driver_->ObserveFCPXClipSelectionChange();
    EXPECT_THAT(Tick(), ElementsAre(ClipName("Interview")));
}

// --- Which source
// ------------------------------------------------------------------------------------

TEST_F(ClipObservation, AWorkingFirstStaticTextIsKeptTickAfterTick) {
    auto text = ShowStaticText("_NS:100", Text("one"));
    EXPECT_THAT(Tick(), ElementsAre(ClipName("one")));
    editor_.Set(text, "AXValue", Text("two"));
    EXPECT_THAT(Tick(), ElementsAre(ClipName("two")));
}

TEST_F(ClipObservation, ASourceThatFailsMovesOnAtTheNextTick) {
    ShowStaticText("_NS:28", Text("from the second"));
    EXPECT_THAT(Tick(), IsEmpty()) << "the tick in which the first source is missing does no more";
    EXPECT_THAT(Tick(), ElementsAre(ClipName("from the second")));
    ShowStaticText("_NS:100", Text("from the first"));
    EXPECT_THAT(Tick(), IsEmpty()) << "the second source is kept until it is missing itself";
    EXPECT_THAT(Tick(), IsEmpty()) << "the clip table has its tick";
    EXPECT_THAT(Tick(), ElementsAre(ClipName("from the first")));
}

TEST_F(ClipObservation, TheClipTableHasOneTickThenTheSearchStartsAgain) {
    editor_.ShowWindow({});
    Tick();
    Tick();
    EXPECT_THAT(Tick(), IsEmpty());
    ShowStaticText("_NS:100", Text("back"));
    EXPECT_THAT(Tick(), ElementsAre(ClipName("back")));
}

TEST_F(ClipObservation, StartingAgainDoesNotStartTheSearchForASourceAgain) {
    ShowStaticText("_NS:28", Text("from the second"));
    Tick();
    EXPECT_THAT(Tick(), ElementsAre(ClipName("from the second")));
    driver_->ObserveFCPXClipSelectionChange();
    EXPECT_THAT(Tick(), ElementsAre(ClipName("from the second"))) << "at once";
}

TEST_F(ClipObservation, EachProfileHasItsOwnStaticTexts) {
    const char* first[] = {"_NS:62", "_NS:62", "_NS:66", "_NS:62", "_NS:100", "_NS:100"};
    for (int row = 0; row < 6; ++row) {
        ChooseFirstStaticText();
        Profile() = row;
        ShowStaticText(first[row], Text("clip"));
        EXPECT_THAT(Tick(), ElementsAre(ClipName("clip"))) << "row " << row;
    }
    const char* second[] = {"_NS:433", "_NS:435", nullptr, "_NS:28", "_NS:28", "_NS:28"};
    for (int row = 0; row < 6; ++row) {
        if (second[row] != nullptr) {
            ChooseFirstStaticText();
            Profile() = row;
            ShowStaticText(second[row], Text("clip"));
            EXPECT_THAT(Tick(), IsEmpty());
            EXPECT_THAT(Tick(), ElementsAre(ClipName("clip"))) << "row " << row;
        }
    }
}

TEST_F(ClipObservation, AnElementOfAnotherRoleIsNoSource) {
    auto field = editor_.Add("AXTextField", "_NS:100");
    editor_.Set(field, "AXValue", Text("a field"));
    editor_.ShowWindow({field});
    EXPECT_THAT(Tick(), IsEmpty());
}

// --- Static text
// ---------------------------------------------------------------------------------------

TEST_F(ClipObservation, AnEmptyOrUnreadableStaticTextReportsNoClipSelectedOnce) {
    for (const Value& value : {Text(""), Null(), Number(5), List({}), Failing(-25212)}) {
        driver_->ObserveFCPXClipSelectionChange();
        ShowStaticText("_NS:100", value);
        EXPECT_THAT(Tick(), ElementsAre(ClipName("no clip selected")));
        EXPECT_THAT(Tick(), IsEmpty());
    }
}

TEST_F(ClipObservation, AClipNameEqualToTheLastSentOneIsNotSentAgain) {
    auto text = ShowStaticText("_NS:100", Text("one"));
    EXPECT_THAT(Tick(), ElementsAre(ClipName("one")));
    EXPECT_THAT(Tick(), IsEmpty());
    editor_.Set(text, "AXValue", Text("two"));
    EXPECT_THAT(Tick(), ElementsAre(ClipName("two")));
    editor_.Set(text, "AXValue", Text("one"));
    EXPECT_THAT(Tick(), ElementsAre(ClipName("one"))) << "only the last one counts";
}

TEST_F(ClipObservation, ANameThatCannotBeConvertedSendsNothing) {
    auto text = ShowStaticText("_NS:100", Text("Interview"));
    Tick();
    editor_.Set(text, "AXValue", Text("\xE6\x97\xA5\xE6\x9C\xAC"));
    EXPECT_THAT(Tick(), IsEmpty());
    EXPECT_EQ(LastClipName(), "Interview");
}

TEST_F(ClipObservation, NamesTravelInTheSystemEncoding) {
    ShowStaticText("_NS:100", Text("Caf\xC3\xA9"));
    auto name = String("Caf\xC3\xA9");
    char expected[16];
    ASSERT_TRUE(
        CFStringGetCString(name.get(), expected, sizeof expected, CFStringGetSystemEncoding()));
    EXPECT_THAT(Tick(), ElementsAre(ClipName(expected)));
}

TEST_F(ClipObservation, ANameOf1023BytesIsSentAndALongerOneSendsNothing) {
    std::string longest(1023, 'n');
    ShowStaticText("_NS:100", Text(longest));
    EXPECT_THAT(Tick(), ElementsAre(ClipName(longest)));
    EXPECT_EQ(LastClipName(), longest);
    ShowStaticText("_NS:100", Text(longest + "n"));
    EXPECT_THAT(Tick(), IsEmpty());
    EXPECT_EQ(LastClipName(), longest);
}

TEST_F(ClipObservation, ANameThatDiffersInItsLastOf1023BytesIsAnother) {
    const std::string beginning(1022, 'n');
    auto text = ShowStaticText("_NS:100", Text(beginning + "1"));
    EXPECT_THAT(Tick(), ElementsAre(ClipName(beginning + "1")));
    editor_.Set(text, "AXValue", Text(beginning + "2"));
    EXPECT_THAT(Tick(), ElementsAre(ClipName(beginning + "2")));
}

TEST_F(ClipObservation, ANullCharacterEndsTheName) {
    ShowStaticText("_NS:100", Text(std::string("Inter\0view", 10)));
    EXPECT_THAT(Tick(), ElementsAre(ClipName("Inter")));
}

TEST_F(ClipObservation, ANameIsRememberedThoughNobodyListens) {
    StopCompanion();
    ShowStaticText("_NS:100", Text("Interview"));
    driver_->ObserveFCPXClipSelectionTask();
    EXPECT_EQ(LastClipName(), "Interview") << "a send that fails is not tried again";
}

// --- Clip table
// ------------------------------------------------------------------------------------------

class ClipTable : public ClipObservation {
  protected:
    // A row with that index whose first cell holds the name.
    ElementReference Row(const Value& index, const Value& name) {
        ElementReference cell = editor_.Add("AXCell");
        editor_.Set(cell, "AXValue", name);
        ElementReference row = editor_.Add("AXRow", "", {cell, editor_.Add("AXCell")});
        editor_.Set(row, "AXIndex", index);
        return row;
    }
    void Select(const std::vector<ElementReference>& rows) {
        editor_.Set(table_, "AXSelectedRows", Elements(rows));
    }
    std::vector<SentMessage> ReadTable() {
        driver_->SetClipNameFromClipTableElement(object_.get());
        return Sent();
    }
    long long LastRow() { return DriverInspector::LastClipRow(*driver_); }

    ElementReference table_ = editor_.Add("AXTable", "_NS:139");
    OwnedReference<AXUIElementRef> object_ = Object(table_);
};

TEST_F(ClipTable, TheFirstSelectedRowNamesTheClip) {
    Select({Row(Number(4), Text("four")), Row(Number(5), Text("five"))});
    EXPECT_THAT(ReadTable(), ElementsAre(ClipName("four")));
    EXPECT_EQ(LastRow(), 4);
}

TEST_F(ClipTable, NothingIsSentWhileNoRowIsSelected) {
    for (const Value& rows :
         {List({}), List({Null()}), List({Number(1)}), Null(), Text("row"), Failing(-25205)}) {
        editor_.Set(table_, "AXSelectedRows", rows);
        EXPECT_THAT(ReadTable(), IsEmpty());
    }
    EXPECT_EQ(LastRow(), -1);
}

TEST_F(ClipTable, ARowWhoseIndexIsNoNumberSendsNothing) {
    for (const Value& index : {Text("4"), Null(), Truth(true), List({}), Failing(-25212)}) {
        Select({Row(index, Text("name"))});
        EXPECT_THAT(ReadTable(), IsEmpty());
    }
    EXPECT_EQ(LastRow(), -1);
}

TEST_F(ClipTable, AnotherRowWithTheSameNameSendsNothing) {
    Select({Row(Number(4), Text("take"))});
    EXPECT_THAT(ReadTable(), ElementsAre(ClipName("take")));
    Select({Row(Number(5), Text("take"))});
    EXPECT_THAT(ReadTable(), IsEmpty());
    EXPECT_EQ(LastRow(), 5);
}

TEST_F(ClipTable, TheRowLastReportedSendsNothingWithoutEvenReadingTheName) {
    auto row = Row(Number(4), Text("take"));
    Select({row});
    ReadTable();
    EXPECT_EQ(ExchangesOf([&] { driver_->SetClipNameFromClipTableElement(object_.get()); }), 2U)
        << "the selected rows and the row's index";
}

TEST_F(ClipTable, TheRowIsRememberedBeforeTheNameIsRead) {
    auto row = Row(Number(4), Failing(-25212));
    Select({row});
    EXPECT_THAT(ReadTable(), IsEmpty());
    EXPECT_EQ(LastRow(), 4);
    Select({Row(Number(4), Text("readable now"))});
    EXPECT_THAT(ReadTable(), IsEmpty()) << "a row whose name could not be had is not tried again";
}

TEST_F(ClipTable, IndexMinusOneCountsAsTheRowThatMeansNone) {
    Select({Row(Number(-1), Text("name"))});
    EXPECT_THAT(ReadTable(), IsEmpty());
}

TEST_F(ClipTable, AnIndexBeyond32BitsIsAsCoreFoundationCutsIt) {
    Select({Row(Number((1L << 32) + 4), Text("name"))});
    ReadTable();
    EXPECT_EQ(LastRow(), 4);
}

TEST_F(ClipTable, ACellValueThatIsNoTextOrCannotBeConvertedSendsNothing) {
    int index = 0;
    for (const Value& name :
         {Number(5), Null(), List({}), Text("\xE6\x97\xA5"), Text(std::string(1024, 'n'))}) {
        Select({Row(Number(++index), name)});
        EXPECT_THAT(ReadTable(), IsEmpty());
    }
    EXPECT_EQ(LastClipName(), "");
}

TEST_F(ClipTable, ANameOf1023BytesIsSentAndALongerOneSendsNothing) {
    const std::string longest(1023, 'n');
    Select({Row(Number(1), Text(longest))});
    EXPECT_THAT(ReadTable(), ElementsAre(ClipName(longest)));
    Select({Row(Number(2), Text(longest + "n"))});
    EXPECT_THAT(ReadTable(), IsEmpty());
    EXPECT_EQ(LastClipName(), longest);
}

TEST_F(ClipTable, ANameThatDiffersAfter64BytesIsAnother) {
    const std::string beginning(64, 'n');
    Select({Row(Number(1), Text(beginning + "1"))});
    EXPECT_THAT(ReadTable(), ElementsAre(ClipName(beginning + "1")));
    Select({Row(Number(2), Text(beginning + "2"))});
    EXPECT_THAT(ReadTable(), ElementsAre(ClipName(beginning + "2")));
}

TEST_F(ClipTable, AnEmptyCellSendsAnEmptyNameUnlikeAnEmptyStaticText) {
    Select({Row(Number(1), Text("take"))});
    ReadTable();
    Select({Row(Number(2), Text(""))});
    EXPECT_THAT(ReadTable(), ElementsAre(ClipName("")));
}

TEST_F(ClipTable, ARowWithoutCellsSendsNothing) {
    int index = 0;
    for (const Value& children :
         {List({}), List({Null()}), List({Text("cell")}), Null(), Failing(-25204)}) {
        auto row = Row(Number(++index), Text("name"));
        editor_.Set(row, "AXChildren", children);
        Select({row});
        EXPECT_THAT(ReadTable(), IsEmpty());
        EXPECT_EQ(LastRow(), index);
    }
}

class ClipTableOf10_3 : public ClipTable {
  protected:
    ClipTableOf10_3() { Profile() = 2; }

    ElementReference RowWithParts(int index, const std::vector<ElementReference>& parts) {
        ElementReference cell = editor_.Add("AXCell", "", parts);
        editor_.Set(cell, "AXValue", Text("value of the cell itself"));
        ElementReference row = editor_.Add("AXRow", "", {cell});
        editor_.Set(row, "AXIndex", Number(index));
        return row;
    }
    ElementReference Part(const std::string& role, const Value& value) {
        ElementReference part = editor_.Add(role);
        editor_.Set(part, "AXValue", value);
        return part;
    }
};

TEST_F(ClipTableOf10_3, TheNameIsInTheCellsFirstTextField) {
    Select({RowWithParts(1, {Part("AXImage", Text("icon")), Part("AXTextField", Text("take")),
                             Part("AXTextField", Text("second"))})});
    EXPECT_THAT(ReadTable(), ElementsAre(ClipName("take")));
}

TEST_F(ClipTableOf10_3, ACellWithoutTextFieldSendsNothing) {
    Select({RowWithParts(1, {Part("AXImage", Text("icon"))})});
    EXPECT_THAT(ReadTable(), IsEmpty());
    Select({RowWithParts(2, {})});
    EXPECT_THAT(ReadTable(), IsEmpty());
    EXPECT_EQ(LastRow(), 2);
}

// --- Timeline index
// -----------------------------------------------------------------------------------------

class TimelineIndex : public ClipTable {
  protected:
    // Only the toggle and the clip table are there, so that the third tick reads the table.
    void ShowToggle(const Value& value) {
        ElementReference box = editor_.Add("AXCheckBox", "_NS:159");
        editor_.Set(box, "AXValue", value);
        editor_.ShowWindow({box, table_});
    }
    void ShowRadioToggle(const std::string& identifier, const Value& children) {
        ElementReference group = editor_.Add("AXRadioGroup", identifier);
        editor_.Set(group, "AXChildren", children);
        editor_.ShowWindow({group, table_});
    }
    ElementReference RadioButton(const Value& value) {
        ElementReference button = editor_.Add("AXRadioButton");
        editor_.Set(button, "AXValue", value);
        return button;
    }
    // The first looks for the first static text, the second for the other one, the third for the
    // table.
    std::vector<SentMessage> ThreeTicks() {
        for (int tick = 0; tick < 3; ++tick) {
            driver_->ObserveFCPXClipSelectionTask();
        }
        return Sent();
    }
};

TEST_F(TimelineIndex, IsVisibleWhenTheCheckBoxIsSetFromProfileRow2On) {
    for (int row = 2; row < 6; ++row) {
        Profile() = row;
        for (int value : {0, 1, -1, 2}) {
            ShowToggle(Number(value));
            EXPECT_EQ(driver_->IsTimelineIndexVisible(), value != 0) << row << ' ' << value;
        }
    }
}

TEST_F(TimelineIndex, IsVisibleWhenTheRadioGroupsFirstChildIsSetInProfileRows0And1) {
    for (int row = 0; row < 2; ++row) {
        Profile() = row;
        for (int value : {0, 1}) {
            ShowRadioToggle(row == 0 ? "_NS:59" : "_NS:63",
                            Elements({RadioButton(Number(value)), RadioButton(Number(1 - value))}));
            EXPECT_EQ(driver_->IsTimelineIndexVisible(), value != 0) << row << ' ' << value;
        }
    }
}

TEST_F(TimelineIndex, IsNotVisibleWithoutTheToggleOrWithAValueThatIsNoNumber) {
    editor_.ShowWindow({});
    EXPECT_FALSE(driver_->IsTimelineIndexVisible());
    for (const Value& value : {Text("1"), Truth(true), Null(), Failing(-25212)}) {
        ShowToggle(value);
        EXPECT_FALSE(driver_->IsTimelineIndexVisible());
    }
    Profile() = 0;
    for (const Value& children : {List({}), List({Null()}), Null(), Text("x")}) {
        ShowRadioToggle("_NS:59", children);
        EXPECT_FALSE(driver_->IsTimelineIndexVisible());
    }
}

// In profile rows 0 and 1 no search begins then that would set it back.
TEST_F(TimelineIndex, AskedForSetsTheSearchLevelBackAlsoWithoutAFrontApplication) {
    VEK_C_AXUtils& utils = DriverInspector::AXUtils(*driver_);
    test_support::SetFrontApplication({nullptr, nullptr, 7});
    Profile() = 0;
    utils.SetDebugLevel(7);
    EXPECT_FALSE(driver_->IsTimelineIndexVisible());
    EXPECT_EQ(AXUtilsInspector::Level(utils), 0U);
}

// Identifiers are used for several controls: the role tells them apart.
TEST_F(TimelineIndex, IsToldByTheCheckBoxAmongControlsOfTheSameIdentifier) {
    std::vector<ElementReference> controls;
    for (const char* role :
         {"AXButton", "AXTable", "AXTextField", "AXRadioGroup", "AXStaticText", "AXGroup"}) {
        controls.push_back(editor_.Add(role, "_NS:159"));
        editor_.Set(controls.back(), "AXValue", Number(0));
    }
    controls.push_back(editor_.Add("AXCheckBox", "_NS:159"));
    editor_.Set(controls.back(), "AXValue", Number(1));
    editor_.ShowWindow(controls);
    EXPECT_TRUE(driver_->IsTimelineIndexVisible());
}

TEST_F(TimelineIndex, IsToldByTheRadioGroupAmongControlsOfTheSameIdentifierInProfileRow0) {
    Profile() = 0;
    std::vector<ElementReference> controls;
    for (const char* role :
         {"AXButton", "AXTable", "AXTextField", "AXCheckBox", "AXStaticText", "AXGroup"}) {
        controls.push_back(editor_.Add(role, "_NS:59", {RadioButton(Number(0))}));
    }
    controls.push_back(editor_.Add("AXRadioGroup", "_NS:59", {RadioButton(Number(1))}));
    editor_.ShowWindow(controls);
    EXPECT_TRUE(driver_->IsTimelineIndexVisible());
}

TEST_F(TimelineIndex, TheTableIsReadAmongControlsOfTheSameIdentifier) {
    const auto decoyRow = Row(Number(3), Text("of another control"));
    ElementReference box = editor_.Add("AXCheckBox", "_NS:159");
    editor_.Set(box, "AXValue", Number(1));
    std::vector<ElementReference> controls = {box};
    for (const char* role :
         {"AXButton", "AXCheckBox", "AXTextField", "AXRadioGroup", "AXOutline", "AXGroup"}) {
        controls.push_back(editor_.Add(role, "_NS:139"));
        editor_.Set(controls.back(), "AXSelectedRows", Elements({decoyRow}));
    }
    controls.push_back(table_);
    Select({Row(Number(4), Text("of the table"))});
    editor_.ShowWindow(controls);
    EXPECT_THAT(ThreeTicks(), ElementsAre(ClipName("of the table")));
}

TEST_F(TimelineIndex, TheTableIsReadWhileItIsVisible) {
    ShowToggle(Number(1));
    Select({Row(Number(4), Text("take"))});
    EXPECT_THAT(ThreeTicks(), ElementsAre(ClipName("take")));
    EXPECT_TRUE(DriverInspector::TimelineIndexVisible(*driver_));
}

TEST_F(TimelineIndex, WhileHiddenNothingOfTheTableIsReadAndTheSearchStartsAgain) {
    ShowToggle(Number(0));
    Select({Row(Number(4), Text("take"))});
    EXPECT_THAT(ThreeTicks(), IsEmpty());
    EXPECT_FALSE(DriverInspector::TimelineIndexVisible(*driver_));
    EXPECT_FALSE(DriverInspector::TimelineIndexChanged(*driver_));
    ShowStaticText("_NS:100", Text("first static text"));
    EXPECT_THAT(Tick(), ElementsAre(ClipName("first static text")));
}

TEST_F(TimelineIndex, AppearingForgetsTheRowSoThatItsNameIsReadAgain) {
    for (int row = 0; row < 5; ++row) {
        const std::string name = "take " + std::to_string(row);
        DriverInspector::TimelineIndexVisible(*driver_) = false;
        DriverInspector::LastClipRow(*driver_) = row;
        Select({Row(Number(row), Text(name))});
        ShowToggle(Number(1));
        EXPECT_THAT(ThreeTicks(), ElementsAre(ClipName(name)));
        EXPECT_TRUE(DriverInspector::TimelineIndexChanged(*driver_))
            << "cleared by the tick that ran the task, not by the task";
    }
}

TEST_F(TimelineIndex, StayingVisibleKeepsTheRow) {
    DriverInspector::TimelineIndexVisible(*driver_) = true;
    DriverInspector::LastClipRow(*driver_) = 4;
    Select({Row(Number(4), Text("take"))});
    ShowToggle(Number(1));
    EXPECT_THAT(ThreeTicks(), IsEmpty());
}

TEST_F(TimelineIndex, DisappearingIsAChangeToo) {
    DriverInspector::TimelineIndexVisible(*driver_) = true;
    ShowToggle(Number(0));
    ThreeTicks();
    EXPECT_FALSE(DriverInspector::TimelineIndexVisible(*driver_));
    EXPECT_TRUE(DriverInspector::TimelineIndexChanged(*driver_));
}

TEST_F(TimelineIndex, VisibleWithoutTableSendsNothing) {
    ElementReference box = editor_.Add("AXCheckBox", "_NS:159");
    editor_.Set(box, "AXValue", Number(1));
    editor_.ShowWindow({box});
    EXPECT_THAT(ThreeTicks(), IsEmpty());
}

TEST_F(ClipObservation, EntryPointsKeptForNotificationsDoNothing) {
    ShowStaticText("_NS:100", Text("Interview"));
    EXPECT_EQ(ExchangesOf([&] {
                  driver_->ObserveFCPXElement(nullptr, 1, nullptr);
                  CVEK_UserSpaceDriver::ObserverCallbackEntry(nullptr, nullptr, nullptr, nullptr);
                  driver_->ObserverDestroyedCallback(nullptr, nullptr);
                  driver_->ObserverRowSelectCallback(nullptr, nullptr);
              }),
              0U);
    EXPECT_THAT(Sent(), IsEmpty());
}

TEST_F(ClipObservation, EntryPointThatTakesTextsLeavesThemAsTheyWere) {
    auto identifier = String("an identifier too long to be anything but an object");
    auto text = String("a text too long to be anything but an object");
    driver_->ObserveFCPXElement((NSString*)identifier.get(), 1, (NSString*)text.get());
    EXPECT_EQ(CFGetRetainCount(identifier.get()), 1);
    EXPECT_EQ(CFGetRetainCount(text.get()), 1);
}

}  // namespace
