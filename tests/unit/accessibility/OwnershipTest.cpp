// What each operation leaves behind, by count of the live objects.
#include "tests/unit/accessibility/DriverBesideEditor.h"

namespace {

using platform_testing::LeftOverBy;

// The tree that every operation here works on: each kind of control that one of them looks for.
class Ownership : public DriverBesideEditor {
  protected:
    Ownership() {
        ElementReference window = editor_.ShowWindow({});
        ElementReference field = Control("AXTextField", "_NS:1", Text("text"));
        ElementReference box = Control("AXCheckBox", "_NS:159", Number(1));
        ElementReference parent = editor_.Add("AXGroup");
        editor_.Set(parent, "AXPosition", PointAt(1, 2));
        editor_.Set(field, "AXParent", Value{parent});
        ElementReference radio = editor_.Add(
            "AXRadioGroup", "_NS:2",
            {Control("AXRadioButton", "", Number(0)), Control("AXRadioButton", "", Number(1))});
        ElementReference playhead = Control("AXValueIndicator", "", Null());
        editor_.Set(playhead, "AXDescription", Text("Playhead"));
        editor_.Set(playhead, "AXValueDescription", Text("01:00"));
        ElementReference area = editor_.Add("AXLayoutArea", "_NS:393", {playhead});
        ElementReference puck = Control("AXButton", "_NS:3", Null());
        ElementReference group = editor_.Add("AXGroup", "", {puck, field, Odd()});
        editor_.Set(window, "AXChildren",
                    List({Value{editor_.Add("AXSplitGroup", "", {group})}, Value{radio}, Value{box},
                          Value{area}, Value{Table()}, Null(), Text("no element")}));
    }

    ElementReference Control(const std::string& role, const std::string& identifier,
                             const Value& value) {
        ElementReference element = editor_.Add(role, identifier);
        editor_.Set(element, "AXValue", value);
        editor_.Set(element, "AXPosition", PointAt(1, 2));
        return element;
    }
    // Every attribute of an unexpected type.
    ElementReference Odd() {
        ElementReference odd = editor_.Add("AXGroup");
        for (const char* attribute : {"AXIdentifier", "AXChildren", "AXSubrole", "AXValue"}) {
            editor_.Set(odd, attribute, PointAt(3, 4));
        }
        return odd;
    }
    ElementReference Table() {
        ElementReference cell = Control("AXCell", "", Text("take"));
        ElementReference row = editor_.Add("AXRow", "", {cell});
        editor_.Set(row, "AXIndex", Number(1));
        ElementReference table = editor_.Add("AXTable", "_NS:139", {row});
        editor_.Set(table, "AXSelectedRows", Elements({row}));
        return table;
    }

    VEK_C_AXUtils& Utils() { return DriverInspector::AXUtils(*driver_); }

    unsigned value_ = 0;
    CGPoint point_ = {0, 0};
};

// The identifiers of controls that are there, that are there with another role, and that are not.
const CFStringRef kIdentifiers[] = {CFSTR("_NS:1"), CFSTR("_NS:2"), CFSTR("_NS:3"),
                                    CFSTR("_NS:999")};

TEST_F(Ownership, SearchesReleaseEverything) {
    for (bool debug : {false, true}) {
        EXPECT_EQ(LeftOverBy([&] {
                      for (CFStringRef identifier : kIdentifiers) {
                          OwnedReference<AXUIElementRef> found(Utils().CopyElement(
                              identifier, kVEK_AXRole_AllValidRoles, debug, "tag"));
                          OwnedReference<AXUIElementRef> child(Utils().CopyChild(
                              1, CFSTR(""), identifier, kVEK_AXRole_AllValidRoles));
                      }
                  }),
                  "");
    }
}

TEST_F(Ownership, OperationsByIdentifierReleaseEverything) {
    EXPECT_EQ(LeftOverBy([&] {
                  for (CFStringRef identifier : kIdentifiers) {
                      driver_->GetStringValueOfElementWithID(identifier);
                      driver_->SetIntValueAsStringOfElementWithID(identifier, 7);
                      driver_->GetValueOfElementWithID(identifier, value_);
                      driver_->GetPositionOfElementWithID(identifier, point_);
                      driver_->PressButtonWithID(identifier);
                      driver_->GetValueOfAXRadioGroupWithID(identifier, value_);
                      driver_->GetParentPositionOfElementWithID(identifier, point_);
                  }
              }),
              "");
}

TEST_F(Ownership, SettingARadioGroupReleasesNeitherTheGroupNorItsChildrenOnAnyPath) {
    constexpr long kLeftOver = 1 + 1 + 2;  // the group, the array, and the two buttons it holds
    for (unsigned index : {0U, 1U, 2U}) {
        platform_testing::AutoreleasePool pool;
        long before = platform_testing::LiveObjectTotal();
        bool pressed = SelectRadioButton(*driver_, CFSTR("_NS:2"), index);
        EXPECT_EQ(platform_testing::LiveObjectTotal() - before, kLeftOver) << "index " << index;
        EXPECT_EQ(pressed, index < 2);
    }
}

TEST_F(Ownership, SettingARadioGroupThatIsNotThereLeavesNothing) {
    EXPECT_EQ(LeftOverBy([&] { driver_->SetValueOfAXRadioGroupWithID(CFSTR("_NS:999"), 0); }), "");
}

TEST_F(Ownership, SearchesInAGivenArrayReleaseEverything) {
    OwnedReference<CFArrayRef> windows(Utils().copyFrontApplicationWindowList(false, ""));
    CFTypeRef children = nullptr;
    AXUIElementCopyAttributeValue(
        static_cast<AXUIElementRef>(CFArrayGetValueAtIndex(windows.get(), 0)), kAXChildrenAttribute,
        &children);
    OwnedReference<CFArrayRef> array(static_cast<CFArrayRef>(children));
    EXPECT_EQ(LeftOverBy([&] {
                  for (CFStringRef identifier : kIdentifiers) {
                      AXUIElementRef borrowed = nullptr;
                      driver_->CopyChildWithID(array.get(), identifier, borrowed,
                                               kVEK_AXRole_AllValidRoles, false, true);
                  }
                  OwnedReference<AXUIElementRef> found(driver_->CopyChildWithRoleAndDescription(
                      array.get(), CFSTR("AXButton"), CFSTR("none"), true));
              }),
              "");
}

TEST_F(Ownership, ObservationReleasesEverything) {
    EXPECT_EQ(LeftOverBy([&] {
                  driver_->ObserveFCPXClipSelectionChange();
                  driver_->ObserveFCPXTimelineTimecode();
                  for (int tick = 0; tick < 6; ++tick) {
                      driver_->ObserveFCPXClipSelectionTask();
                      driver_->ObserveFCPXTimelineTimecodeTask();
                  }
                  Sent();
              }),
              "");
}

TEST_F(Ownership, TheColorPuckReleasesEverything) {
    EXPECT_EQ(LeftOverBy([&] { FindColorPuck(*driver_, "_NS:3"); }), "");
    EXPECT_EQ(LeftOverBy([&] { FindColorPuck(*driver_, "_NS:999"); }), "");
}

TEST_F(Ownership, TheCacheReleasesEverything) {
    OwnedReference<AXUIElementRef> element = Object(editor_.Add("AXButton"));
    EXPECT_EQ(LeftOverBy([&] {
                  VEK_C_AXUtils utils;
                  utils.CacheElement(element.get(), CFSTR("_NS:1"));
                  utils.CachedElementsForApplication(String("an application").get());
                  utils.UncacheElement(CFSTR("_NS:1"));
                  utils.ResetFrontApplicationCache();
                  utils.CachedElementsForApplication(String("an application").get());
                  utils.DebugCache(utils.CachedElementsForApplication(CFSTR("other")), "tag");
              }),
              "");
}

}  // namespace
