// Dumps of trees that contradict themselves, values that no scene can hold, applications that stop.
#include <ApplicationServices/ApplicationServices.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "VEKCommon/OwnedReference.h"
#include "scenes/notation/Names.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/unit/tools/Carried.h"
#include "tools/AttributeValue.h"
#include "tools/Text.h"

namespace krt9ctl {
namespace {

using test_support::ScriptedDesktop;
using testing::HasSubstr;
using testing::Not;

Outcome Dumped(const std::string& scene, std::vector<std::string> words = {"dump"}) {
    const ScriptedDesktop session(scene);
    return Carried(std::move(words));
}

std::string SceneOf(const std::string& windows) {
    return R"({"front": "a.b", "applications": [{"bundleID": "a.b", "name": "", "pid": 5,
               "windows": )" +
           windows + "}]}";
}

std::string SceneWith(const std::string& elements) {
    return SceneOf(R"([{"AXRole": "AXWindow", "AXChildren": [)" + elements + "]}]");
}

// The dump of the scene; loaded and dumped again it must be the same.
std::string RoundTrip(const std::string& scene) {
    const Outcome first = Dumped(scene);
    EXPECT_EQ(first.code, ExitCode::ok) << first.err;
    EXPECT_EQ(Dumped(first.out).out, first.out);
    return first.out;
}

TEST(OddTree, KeepsWhatContradictsTheTree) {
    const char* const kOdd[] = {
        R"("AXParent": {"element": "/"})",
        R"("AXWindow": {"element": "/0/0"})",
        R"("AXTopLevelUIElement": "none")",
        R"("AXFrame": [1, 2, 3, 4])",
        R"("AXIndex": 3)",
        R"("AXIndex": 3.5)",
        R"("AXIndex": "three")",
        R"("AXSelected": true)",
        R"("AXSelected": 1)",
        R"("AXRows": [1])",
        R"("AXVisibleRows": 5)",
        R"("AXMain": true)",
        R"("AXOwner": {"element": "/"})",
        R"("AXSelectedRows": {"array": [{"element": "/0"}]})",
        R"("AXSelectedRows": {"dictionary": {}})",
        R"("AXChildren": {"array": [1]})",
    };
    for (const std::string role : {"AXGroup", "AXRow", "AXTable"}) {
        for (const std::string odd : kOdd) {
            const std::string dump =
                RoundTrip(SceneWith("{\"AXRole\": \"" + role + "\", " + odd + "}"));
            EXPECT_THAT(dump, HasSubstr(odd.substr(0, odd.find(':')))) << role << ' ' << odd;
        }
    }
}

TEST(OddTree, KeepsAFrameThatDiffersInOneNumber) {
    for (const std::string frame : {"[9,2,3,4]", "[1,9,3,4]", "[1,2,9,4]", "[1,2,3,9]"}) {
        EXPECT_THAT(RoundTrip(SceneWith(R"({"AXRole": "AXGroup", "AXPosition": [1, 2],
                                            "AXSize": [3, 4], "AXFrame": )" +
                                        frame + "}")),
                    HasSubstr("\"AXFrame\": " + frame));
    }
    for (const std::string place : {R"("AXPosition": [1, 2])", R"("AXSize": [3, 4])"}) {
        EXPECT_THAT(RoundTrip(SceneWith("{" + place + R"(, "AXFrame": [1, 2, 3, 4]})")),
                    HasSubstr("\"AXFrame\": [1,2,3,4]"));
    }
    EXPECT_THAT(RoundTrip(SceneWith(R"({"AXPosition": [1, 2], "AXSize": [3, 4],
                                        "AXFrame": "none"})")),
                HasSubstr(R"("AXFrame": "none")"));
}

TEST(OddTree, KeepsAWindowThatNamesItself) {
    EXPECT_THAT(RoundTrip(SceneOf(R"([{"AXRole": "AXWindow", "AXWindow": {"element": "/0"}}])")),
                HasSubstr(R"("AXWindow": {"element":"/0"})"));
}

TEST(OddTree, KeepsElementsWithoutAnyAttribute) {
    EXPECT_THAT(RoundTrip(SceneWith(R"({"AXChildren": [{}]})")), HasSubstr(R"({ "AXChildren": [)"));
}

TEST(OddTree, OfAnApplicationWhoseNameCannotBeReadHasNone) {
    const Outcome outcome = Dumped(R"({"front": "a.b", "applications": [{"bundleID": "a.b",
        "pid": 5, "windows": [], "misbehaviour": {"read": {"AXTitle": {"error": -25200}}}}]})");
    EXPECT_EQ(outcome.code, ExitCode::ok) << outcome.err;
    EXPECT_THAT(outcome.out, Not(HasSubstr("\"name\"")));
}

TEST(OddTree, KeepsAnEmptyName) {
    EXPECT_THAT(RoundTrip(SceneOf("[]")), HasSubstr("\"name\": \"\""));
}

TEST(OddTree, KeepsAWindowListThatIsNotAListOfElements) {
    const std::string dump = Dumped(SceneOf(R"({"array": [1]})")).out;
    EXPECT_THAT(dump, HasSubstr(R"("windows": {"error":-25200})"));
}

TEST(OddTree, EndsTheDumpWhenTheApplicationStopsReplyingInTheMiddle) {
    const std::pair<std::string, const char*> cases[] = {
        {SceneOf(R"({"error": -25204})"), "does not reply"},
        {SceneOf(R"({"error": -25211})"), "not trusted"},
        {SceneOf(R"({"error": -25208})"), "accessibility error -25208"},
        {SceneWith(R"({"misbehaviour": {"read": {"multiple": {"error": -25204}}}})"),
         "does not reply"},
    };
    for (const auto& [scene, sentence] : cases) {
        const Outcome outcome = Dumped(scene);
        EXPECT_EQ(outcome.code, ExitCode::accessibility) << scene;
        EXPECT_THAT(outcome.err, HasSubstr(sentence)) << scene;
        EXPECT_EQ(outcome.out, "") << scene;
    }
}

TEST(OddTree, OfTheFrontApplicationByNameIsThatInFront) {
    EXPECT_THAT(Dumped(SceneOf("[]"), {"dump", "--application", "a.b"}).out,
                HasSubstr("\"front\": \"a.b\""));
}

TEST(OddTree, LeavesOutNamesThatNoSceneHasAndSaysSo) {
    ScriptedDesktop session(SceneOf(R"([{"AXRole": "AXWindow"}])"));
    session.onReply = [](std::size_t, test_support::Exchange& exchange) {
        if (exchange.request.operation == desktop_link::Operation::attributeNames &&
            exchange.request.element.id != 0) {
            exchange.reply->values.push_back({std::string("lower")});
        }
    };
    const Outcome outcome = Carried({"dump"});
    EXPECT_EQ(outcome.code, ExitCode::ok);
    EXPECT_THAT(outcome.out, Not(HasSubstr("lower")));
    EXPECT_THAT(outcome.err, HasSubstr("1 values that a scene cannot hold are left out"));
}

TEST(OddDesktop, WhoseReplyIsNotAnObjectIsARefusal) {
    ScriptedDesktop session(SceneOf("[]"));
    session.onReply = [](std::size_t, auto& exchange) { exchange.reply->text = "[1]"; };
    const Outcome outcome = Carried({"desktop", "state"});
    EXPECT_EQ(outcome.code, ExitCode::refused);
    EXPECT_THAT(outcome.err, HasSubstr("not a JSON object"));
    EXPECT_EQ(Carried({"dump", "--application", "x.y"}).code, ExitCode::accessibility);
}

std::optional<scene_notation::Answer> Held(CFTypeRef value) {
    return AnswerOf(value, [](CFTypeRef) { return 0; });
}

TEST(OddValue, ThatNoSceneCanHoldIsNothing) {
    const UniChar alone[] = {'a', 0xD800};
    const OwnedReference<CFStringRef> surrogate(
        CFStringCreateWithCharacters(kCFAllocatorDefault, alone, 2));
    EXPECT_EQ(Held(surrogate.get()), std::nullopt);
    const OwnedReference<CFMutableArrayRef> list(
        CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks));
    CFArrayAppendValue(list.get(), surrogate.get());
    EXPECT_EQ(Held(list.get()), std::nullopt);
}

TEST(OddValue, OfErrorTypeThatIsNoErrorIsAValue) {
    EXPECT_THAT(RoundTrip(SceneWith(R"({"AXHelp": {"axerror": 0}, "AXTitle": {"axerror": -1}})")),
                HasSubstr(R"("AXTitle": {"error":-1}, "AXHelp": {"axerror":0})"));
}

TEST(OddValue, NestedTooDeepIsNothing) {
    OwnedReference<CFArrayRef> value(
        CFArrayCreate(kCFAllocatorDefault, nullptr, 0, &kCFTypeArrayCallBacks));
    for (std::size_t depth = 1; depth <= scene_notation::kDeepestValue; ++depth) {
        CFTypeRef inner = value.get();
        value.reset(CFArrayCreate(kCFAllocatorDefault, &inner, 1, &kCFTypeArrayCallBacks));
    }
    EXPECT_NE(Held(value.get()), std::nullopt);
    CFTypeRef inner = value.get();
    const OwnedReference<CFArrayRef> deeper(
        CFArrayCreate(kCFAllocatorDefault, &inner, 1, &kCFTypeArrayCallBacks));
    EXPECT_EQ(Held(deeper.get()), std::nullopt);
}

TEST(OddValue, IsADictionaryWithAKeyThatIsNotAText) {
    const OwnedReference<CFMutableDictionaryRef> map(CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    CFDictionarySetValue(map.get(), kCFBooleanTrue, kCFBooleanTrue);
    EXPECT_EQ(Held(map.get()), std::nullopt);
}

TEST(Text, IsPrintedWithoutWhatATerminalWouldObey) {
    EXPECT_EQ(Printable("a\x7F"), "a\\x7f");
    EXPECT_EQ(Printable("\xC2\xA9"), "\xC2\xA9");
    EXPECT_EQ(Printable("a\xFF"), "a\\xff");
    EXPECT_EQ(Printable("\xC3\xA9\xFF"), "\\xc3\\xa9\\xff");
}

TEST(Text, ThatIsNotUtf8HasNoOtherForm) {
    EXPECT_EQ(Utf8Of(kCFBooleanTrue), std::nullopt);
}

}  // namespace
}  // namespace krt9ctl
