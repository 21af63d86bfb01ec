#include "tests/adversary/Operations.h"

#include <ApplicationServices/ApplicationServices.h>

#include "VEKCommon/Autoreleased.h"
#include "VEKCommon/MessageCodes.h"
#include "VEKCommon/OwnedReference.h"
#include "accessibility/calls/ElementAttributes.h"
#include "platform/ApplicationServices/Element.h"

namespace adversary {

namespace {

// The controls in the second window, between others that must not be mistaken for them: one that is
// searched and holds nothing, a search field that has an identifier in use, one after it.
std::string SceneWith(const std::string& controls) {
    return R"({"front": "com.apple.FinalCut", "pointer": [100.75, 200.25], "applications": [
      {"bundleID": "com.apple.FinalCut", "name": "Editor", "pid": 501, "windows": [
        {"AXRole": "AXWindow", "AXTitle": "Viewer", "AXPosition": [1, 2], "AXSize": [3, 4],
         "AXChildren": [
           {"AXRole": "AXGroup", "AXChildren": [
             {"AXRole": "AXTextField", "AXSubrole": "AXSearchField", "AXIdentifier": "_NS:60",
              "AXValue": "7"}]}]},
        {"AXRole": "AXWindow", "AXTitle": "Main Window", "AXPosition": [10.9, -20.9],
         "AXSize": [300.5, 400.5], "AXChildren": [
           {"AXRole": "AXSplitGroup", "AXPosition": [100.5, -7.5], "AXChildren": [
             {"AXRole": "AXScrollArea", "AXPosition": [5.5, 6.5], "AXChildren": [)" +
           controls + R"(]}]},
           {"AXRole": "AXButton", "AXIdentifier": "_NS:996", "AXDescription": "last"}]},
        {"AXRole": "AXWindow", "AXTitle": "Color Board", "AXPosition": [50, 60],
         "AXSize": [70, 80], "AXChildren": [
           {"AXRole": "AXSplitGroup", "AXChildren": [{"AXRole": "AXGroup", "AXChildren": [
             {"AXRole": "AXButton", "AXIdentifier": "_NS:77"}]}]}]}]},
      {"bundleID": "com.example.player", "name": "Player", "pid": 502, "windows": [
        {"AXRole": "AXWindow", "AXTitle": "Main Window of another", "AXChildren": [
          {"AXRole": "AXCheckBox", "AXIdentifier": "_NS:59", "AXValue": 99,
           "AXPosition": [0, 0]}]}]}]})";
}

const std::string kControls =
    R"({"AXRole": "AXButton", "AXIdentifier": "_NS:58"},
       {"AXRole": "AXCheckBox", "AXIdentifier": "_NS:59", "AXValue": 1, "AXPosition": [40, 50.9]},
       {"AXRole": "AXTextField", "AXIdentifier": "_NS:60", "AXValue": "42 frames"},
       {"AXRole": "AXRadioGroup", "AXIdentifier": "_NS:61", "AXChildren": [
         {"AXRole": "AXRadioButton", "AXValue": 0}, {"AXRole": "AXRadioButton", "AXValue": 1},
         {"AXRole": "AXRadioButton", "AXValue": 0}]})";
const std::string kCheckBox = kHolder + "/1";
const std::string kTextField = kHolder + "/2";
const std::string kRadioGroup = kHolder + "/3";

template <typename... Arguments>
DriverOperation Request(const std::string& name, const std::string& control, SInt32 code,
                        const Bytes& body,
                        Outcome (ExpectedDriver::*expected)(Replay&, Arguments...),
                        std::decay_t<Arguments>... arguments) {
    return {.name = name,
            .scene = SceneWith(kControls),
            .controls = {control},
            .run = [=](DriverUnderAttack& driver) { return driver.Ask(code, body); },
            .expect = [=](ExpectedDriver& driver,
                          Replay& replay) { return (driver.*expected)(replay, arguments...); },
            .keepsWhatItFinds = code == kJSRV};
}

// A request that has nothing to do with the session.
DriverOperation Silent(const std::string& name, SInt32 code, const Bytes& body) {
    return Request(name, kCheckBox, code, body, &ExpectedDriver::EventsPosted, 0);
}

DriverOperation Tick(const std::string& name, unsigned source, const std::string& version,
                     const std::string& controls, const std::vector<std::string>& addresses) {
    return {.name = name,
            .scene = SceneWith(controls),
            .controls = addresses,
            .run = [](DriverUnderAttack& driver) { return driver.Tick(); },
            .expect = [](ExpectedDriver& driver, Replay& replay) { return driver.Tick(replay); },
            .version = version,
            .clipSource = source};
}

std::string TimecodeArea(const std::string& id) {
    return R"(, {"AXRole": "AXLayoutArea", "AXIdentifier": ")" + id + R"(", "AXChildren": [
        {"AXRole": "AXImage"},
        {"AXRole": "AXValueIndicator", "AXDescription": "Skimmer", "AXValueDescription": "99:00"},
        {"AXRole": "AXValueIndicator", "AXDescription": "Playhead", "AXValueDescription": "01:00"}
        ]})";
}

std::string StaticText(const std::string& id) {
    return R"({"AXRole": "AXStaticText", "AXIdentifier": ")" + id + R"(", "AXValue": "Clip"})";
}

std::string Table(const std::string& id, const std::string& cell) {
    return R"(, {"AXRole": "AXTable", "AXIdentifier": ")" + id + R"(", "AXSelectedRows": [1],
        "AXChildren": [{"AXRole": "AXRow", "AXChildren": []},
                       {"AXRole": "AXRow", "AXChildren": [)" +
           cell + R"(]}]})";
}

const std::string kToggle = R"({"AXRole": "AXCheckBox", "AXIdentifier": "_NS:159", "AXValue": 1})";
const std::string kRadioToggle = R"({"AXRole": "AXRadioGroup", "AXIdentifier": "_NS:59",
    "AXChildren": [{"AXRole": "AXRadioButton", "AXValue": 1}]})";
const std::string kCell = R"({"AXRole": "AXCell", "AXValue": "Take"})";
const std::string kCellWithField = R"({"AXRole": "AXCell", "AXChildren": [{"AXRole": "AXImage"},
    {"AXRole": "AXTextField", "AXValue": "Take"}]})";

void AddTicks(std::vector<DriverOperation>& operations) {
    const std::vector<std::string> textAndArea = {kHolder + "/0", kHolder + "/1"};
    const std::vector<std::string> toggleTableRowArea = {kHolder + "/0", kHolder + "/1",
                                                         kHolder + "/1/1", kHolder + "/2"};
    operations.push_back(Tick("TickWithTheFirstStaticText", 0, "10.4.6",
                              StaticText("_NS:100") + TimecodeArea("_NS:393"), textAndArea));
    operations.push_back(Tick("TickWithTheSecondStaticText", 1, "10.4.6",
                              StaticText("_NS:28") + TimecodeArea("_NS:393"), textAndArea));
    operations.push_back(Tick("TickWithTheClipTable", 2, "10.4.6",
                              kToggle + Table("_NS:139", kCell) + TimecodeArea("_NS:393"),
                              toggleTableRowArea));
    operations.push_back(Tick("TickWithTheClipTableOf103", 2, "10.3.2",
                              kToggle + Table("_NS:16", kCellWithField) + TimecodeArea("_NS:16"),
                              toggleTableRowArea));
    operations.push_back(Tick("TickWithTheClipTableOf101", 2, "10.1.4",
                              kRadioToggle + Table("_NS:49", kCell) + TimecodeArea("_NS:99"),
                              toggleTableRowArea));
}

// --- Searches that no request makes; what they find is reported like a reply ---

Outcome Found(const std::optional<ElementReference>& element) {
    Outcome outcome;
    if (element) {
        outcome.reply = Integers({static_cast<unsigned int>(element->id)});
    }
    return outcome;
}

Outcome Found(AXUIElementRef element) {
    return Found(element != nullptr ? std::optional(application_services::ReferenceOf(element))
                                    : std::nullopt);
}

template <typename Run, typename Expected>
DriverOperation Search(const std::string& name, const std::string& control, Run run,
                       Expected expected) {
    return {.name = name,
            .scene = SceneWith(kControls),
            .controls = {control},
            .run =
                [run](DriverUnderAttack& driver) {
                    const platform_testing::AutoreleasePool pool;
                    return Found(run(driver));
                },
            .expect = [expected](ExpectedDriver& driver,
                                 Replay& replay) { return Found(expected(driver, replay)); }};
}

// As an attribute of the main window, which the driver has at hand.
OwnedReference<CFArrayRef> CopyChildrenOfMainWindow(DriverUnderAttack& driver) {
    const OwnedReference<AXUIElementRef> window(
        application_services::CreateElement(driver.Expected().mainWindow));
    return CopyArrayAttribute(window.get(), kAXChildrenAttribute);
}

AXUIElementRef FindColorPuck(DriverUnderAttack& driver) {
    const CFStringRef identifier = CFSTR("_NS:77");
    return driver.Driver().GetColorPuckWithID(
        reinterpret_cast<NSString*>(const_cast<__CFString*>(identifier)));
}

AXUIElementRef FindChildWithID(DriverUnderAttack& driver) {
    AXUIElementRef found = nullptr;
    driver.Driver().CopyChildWithID(CopyChildrenOfMainWindow(driver).get(), CFSTR("_NS:61"), found,
                                    kVEK_AXRole_AllValidRoles, false, false);
    return found;
}

AXUIElementRef FindChildWithDescription(DriverUnderAttack& driver) {
    return Autoreleased<AXUIElementRef>(
        OwnedReference<AXUIElementRef>(driver.Driver().CopyChildWithRoleAndDescription(
            CopyChildrenOfMainWindow(driver).get(), kAXButtonRole, CFSTR("last"), false)));
}

void AddSearches(std::vector<DriverOperation>& operations) {
    using Expected = ExpectedDriver;
    operations.push_back(Search(
        "ColorPuck", "/2/0/0/0", FindColorPuck,
        [](Expected& driver, Replay& replay) { return driver.ColorPuck(replay, "_NS:77"); }));
    operations.push_back(Search(
        "ChildWithID", kRadioGroup, FindChildWithID,
        [](Expected& driver, Replay& replay) { return driver.ChildWithID(replay, "_NS:61"); }));
    operations.push_back(Search("ChildWithRoleAndDescription", "/1/1", FindChildWithDescription,
                                [](Expected& driver, Replay& replay) {
                                    return driver.ChildWithDescription(replay, "AXButton", "last");
                                }));
}

}  // namespace

std::vector<DriverOperation> AllOperations() {
    using Expected = ExpectedDriver;
    const Bytes boxNumber = Integers({59});
    std::vector<DriverOperation> operations = {
        Silent("JAcF", kJAcF, Integers({1, 1, 1})),
        Request("JBtP", kCheckBox, kJBtP, boxNumber, &Expected::Press, "_NS:59"),
        Request("JCPK", kCheckBox, kJCPK, Integers({1, 0x1B00, 1}), &Expected::EventsPosted, 1),
        Request("JEPp", kCheckBox, kJEPp, boxNumber, &Expected::ParentPosition, "_NS:59"),
        Request("JESI", kTextField, kJESI, Integers({60}), &Expected::TextAsNumber, "_NS:60"),
        Request("JElP", kCheckBox, kJElP, boxNumber, &Expected::Position, "_NS:59"),
        Request("JElV", kCheckBox, kJElV, boxNumber, &Expected::Value, "_NS:59"),
        Request("JGRV", kRadioGroup, kJGRV, Integers({61}), &Expected::SelectedRadioButton,
                "_NS:61"),
        Request("JGlM", kCheckBox, kJGlM, {}, &Expected::PointerPosition),
        Silent("JObE", kJObE, {}),
        Silent("JObT", kJObT, {}),
        Request("JPMC", kCheckBox, kJPMC, Integers({1, 2, 0x1B00, 1}), &Expected::EventsPosted, 1),
        Request("JPME", kCheckBox, kJPME, Integers({1, 2, 0x1B00, 1}), &Expected::EventsPosted, 5),
        Request("JPMS", kCheckBox, kJPMS, Integers({1, 2, 0x1B00, 1}), &Expected::EventsPosted, 6),
        Silent("JPth", kJPth, {}),
        Request("JSIS", kTextField, kJSIS, Integers({60, 5}), &Expected::SetNumberAsText, "_NS:60",
                5),
        Request("JSRV", kRadioGroup, kJSRV, Integers({61, 2}), &Expected::SelectRadioButton,
                "_NS:61", 2U),
        Silent("JStO", kJStO, {}),
        Request("JTWP", "/1", kJTWP,
                Integers({2}) + Text("Absent") + Integers({0, 0, 0, 0, 0, 0}) + Text("Main") +
                    Integers({0, 0, 0, 0, 0, 0}),
                &Expected::TargetWindowFrame,
                std::vector<Expected::Candidate>{{"Absent", {}}, {"Main", {}}}),
        Request("JTWPWithASubWindow", "/2", kJTWP,
                Integers({1}) + Text("Main") + Integers({0, 0, 0, 0, 0, 1}) + Text("Board") +
                    Integers({0}),
                &Expected::TargetWindowFrame, std::vector<Expected::Candidate>{{"Main", "Board"}}),
        Request("JWiP", "/1", kJWiP, Integers({1}) + Text("Main"), &Expected::WindowFrame, "Main",
                true),
        Silent("JXRs", kJXRs, {}),
    };
    AddTicks(operations);
    AddSearches(operations);
    return operations;
}

}  // namespace adversary
