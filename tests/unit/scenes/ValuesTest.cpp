// Values of attributes, read and written. The forms are those of docs/scenes.md.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "scenes/notation/Addresses.h"
#include "scenes/notation/Fields.h"
#include "scenes/notation/Hex.h"
#include "scenes/notation/Names.h"
#include "scenes/notation/ValueReading.h"
#include "scenes/notation/ValueWriting.h"

namespace scene_notation {
namespace {

using desktop_link::Array;
using desktop_link::Bytes;
using desktop_link::Dictionary;
using desktop_link::ElementReference;
using desktop_link::ErrorValue;
using desktop_link::Point;
using desktop_link::Range;
using desktop_link::Rect;
using desktop_link::Size;
using nlohmann::json;

constexpr ElementReference kThere{5, 7};
constexpr ElementReference kElsewhere{6, 8};
constexpr ElementReference kDestroyed{5, 9};

ElementReference Resolve(const std::string& address, const std::string& application,
                         const std::string&) {
    if (address.empty()) {
        return kDestroyed;
    }
    return address == "/0" && application.empty() ? kThere : kElsewhere;
}

Json Describe(const ElementReference& reference) {
    if (reference == kDestroyed) {
        return WriteNoElement();
    }
    return reference == kThere ? WriteElement("/0") : WriteElement("/1", "a.b");
}

Answer Read(const std::string& text, const std::string& attribute = "AXValue") {
    return ReadAnswer(json::parse(text), attribute, attribute, Resolve);
}

std::string Written(const Answer& answer, std::string_view attribute = "AXValue") {
    return OneLine(WriteAnswer(answer, attribute, Describe));
}

std::string ProblemOf(const std::string& text, const std::string& attribute = "AXValue") {
    try {
        Read(text, attribute);
    } catch (const SceneError& error) {
        return error.what();
    }
    return "";
}

struct Form {
    const char* attribute;
    const char* text;
    Answer answer;
};

const Form kForms[] = {
    {"AXValue", "5", Answer::Of({std::int64_t{5}})},
    {"AXValue", "-9223372036854775808", Answer::Of({std::numeric_limits<std::int64_t>::min()})},
    {"AXValue", "5.0", Answer::Of({5.0})},
    {"AXValue", R"("text")", Answer::Of({std::string("text")})},
    {"AXValue", "true", Answer::Of({true})},
    {"AXValue", R"([1,"a"])", Answer::Of({Array{{std::int64_t{1}}, {std::string("a")}}})},
    {"AXPosition", "[1,2]", Answer::Of({Point{1, 2}})},
    {"AXSize", "[3,4.5]", Answer::Of({Size{3, 4.5}})},
    {"AXFrame", "[1,2,3,4]", Answer::Of({Rect{{1, 2}, {3, 4}}})},
    {"AXValue", R"({"point":[1,2]})", Answer::Of({Point{1, 2}})},
    {"AXFrame", R"({"size":[3,4]})", Answer::Of({Size{3, 4}})},
    {"AXPosition", R"({"rect":[1,2,3,4]})", Answer::Of({Rect{{1, 2}, {3, 4}}})},
    {"AXValue", R"({"range":[1,2]})", Answer::Of({Range{1, 2}})},
    {"AXPosition", R"({"array":[1]})", Answer::Of({Array{{std::int64_t{1}}}})},
    {"AXSize", R"({"array":[]})", Answer::Of({Array{}})},
    {"AXFrame", R"({"array":[]})", Answer::Of({Array{}})},
    {"AXChildren", R"({"array":[]})", Answer::Of({Array{}})},
    {"AXWindows", R"({"array":[]})", Answer::Of({Array{}})},
    {"AXSelectedRows", R"({"array":[]})", Answer::Of({Array{}})},
    {"AXRows", "[]", Answer::Of({Array{}})},
    {"AXValue", R"([{"point":[1,2]},[]])", Answer::Of({Array{{Point{1, 2}}, {Array{}}}})},
    {"AXValue", R"({"dictionary":{"k":{"data":"00ff"}}})",
     Answer::Of({Dictionary{{"k", {Bytes{{0x00, 0xFF}}}}}})},
    {"AXValue", R"({"double":"inf"})", Answer::Of({HUGE_VAL})},
    {"AXValue", R"({"double":"-inf"})", Answer::Of({-HUGE_VAL})},
    {"AXParent", R"({"element":"/0"})", Answer::Of({kThere})},
    {"AXParent", R"({"element":"/1","application":"a.b"})", Answer::Of({kElsewhere})},
    {"AXParent", R"({"element":null})", Answer::Of({kDestroyed})},
    {"AXValue", R"({"null":true})", Answer::Of({})},
    {"AXValue", R"({"axerror":-25205})", Answer::Of({ErrorValue{-25205}})},
    {"AXValue", R"({"error":-25204})", Answer::Error(-25204)},
    {"AXValue", "null", Answer::Error(kNoValueError)},
    {"AXValue", R"({"nothing":true})", {{}, 0, true}},
};

TEST(Values, AreWrittenAsTheyAreRead) {
    for (const Form& form : kForms) {
        EXPECT_TRUE(Read(form.text, form.attribute) == form.answer)
            << form.attribute << ' ' << form.text;
        EXPECT_EQ(Written(form.answer, form.attribute), form.text);
    }
}

TEST(Values, HaveFurtherFormsThatAreOnlyRead) {
    EXPECT_TRUE(Read(R"({"double":5})") == Answer::Of({5.0}));
    EXPECT_TRUE(Read(R"({"array":[]})") == Answer::Of({Array{}}));
    EXPECT_TRUE(Read(R"({"data":"aBfF"})") == Answer::Of({Bytes{{0xAB, 0xFF}}}));
    EXPECT_TRUE(Read(R"({"error":-25212})") == Answer::Error(kNoValueError));
    const Answer nan = Read(R"({"double":"nan"})");
    ASSERT_TRUE(std::holds_alternative<double>(nan.value.content));
    EXPECT_TRUE(std::isnan(std::get<double>(nan.value.content)));
    EXPECT_EQ(Written(nan), R"({"double":"nan"})");
}

TEST(Values, AreRefusedWithTheirPlace) {
    const struct {
        const char* attribute;
        const char* text;
        const char* problem;
    } kProblems[] = {
        {"AXPosition", "[1]", "AXPosition: expected an array of 2 numbers"},
        {"AXFrame", "[1,2,3,true]", "AXFrame[3]: expected a number, got boolean"},
        {"AXValue", R"({"size":[1,2,3]})", "AXValue.size: expected an array of 2 numbers"},
        {"AXValue", R"({"range":[1.5,2]})",
         "AXValue.range[0]: expected a whole number, got number"},
        {"AXValue", R"({"range":[1]})", "AXValue.range: expected an array of 2 whole numbers"},
        {"AXValue", R"({"data":"0g"})",
         "AXValue.data: expected two hexadecimal digits for each byte"},
        {"AXValue", R"({"colour":1})", R"(AXValue: unknown tag "colour")"},
        {"AXValue", R"({"point":[1,2],"size":[1,2]})",
         R"(AXValue: expected one tag such as {"point": [1, 2]})"},
        {"AXValue", R"({"element":"/","x":1})", R"(AXValue: unknown key "x")"},
        {"AXValue", R"([{"error":-25204}])", R"(AXValue[0]: unknown tag "error")"},
        {"AXValue", R"([null])",
         R"(AXValue[0]: null is not a value; write {"null": true} for the null object)"},
    };
    for (const auto& [attribute, text, problem] : kProblems) {
        EXPECT_EQ(ProblemOf(text, attribute), problem);
    }
}

TEST(Values, NestSixtyFourDeepBelowTheOutermost) {
    std::string opening;
    std::string closing;
    for (std::size_t depth = 0; depth < kDeepestValue; ++depth) {
        const bool even = depth % 2 == 0;
        opening += even ? R"({"dictionary":{"k":)" : "[";
        closing.insert(0, even ? "}}" : "]");
    }
    std::string deepest = opening;
    deepest.append("[]").append(closing);
    EXPECT_EQ(kDeepestValue, 64U);
    EXPECT_EQ(Written(Read(deepest)), deepest);
    deepest.insert(0, "[").append("]");
    EXPECT_THAT(ProblemOf(deepest), testing::HasSubstr("nested too deep"));
}

TEST(Values, MentionElementsAtAnyDepth) {
    EXPECT_TRUE(MentionsElement(json::parse(R"([{"dictionary": {"k": {"element": "/"}}}])")));
    EXPECT_FALSE(MentionsElement(json::parse(R"([{"dictionary": {"k": "element"}}])")));
}

TEST(Coordinates, HaveNoFractionWhenTheyAreWhole) {
    EXPECT_EQ(OneLine(WriteCoordinate(-INFINITY)), R"({"double":"-inf"})");
    EXPECT_EQ(OneLine(WriteCoordinate(INFINITY)), R"({"double":"inf"})");
    EXPECT_EQ(OneLine(WriteCoordinate(NAN)), R"({"double":"nan"})");
    EXPECT_EQ(OneLine(WriteCoordinate(-0.0)), "-0.0");
    EXPECT_EQ(OneLine(WriteCoordinate(0)), "0");
    EXPECT_EQ(OneLine(WriteCoordinate(9007199254740992)), "9.007199254740992e+15");
    EXPECT_EQ(OneLine(WriteCoordinate(9007199254740991)), "9007199254740991");
    EXPECT_EQ(OneLine(WriteCoordinate(1.5)), "1.5");
    EXPECT_EQ(OneLine(WritePosition({1, 2.5})), "[1,2.5]");
}

TEST(Hex, IsPairsOfDigitsInEitherCase) {
    const std::vector<std::uint8_t> bytes = {0x00, 0x7F, 0xA5, 0xFF};
    EXPECT_EQ(FormatHex(bytes), "007fa5ff");
    EXPECT_EQ(FormatHex({}), "");
    EXPECT_EQ(ParseHex("007Fa5fF"), bytes);
    EXPECT_EQ(ParseHex(""), std::vector<std::uint8_t>());
    for (const char* text : {"0", "000", "0 ", " 0", "0g", "g0", "0x", "-1", "+1"}) {
        EXPECT_EQ(ParseHex(text), std::nullopt) << text;
    }
}

}  // namespace
}  // namespace scene_notation
