// Reading the fields of scenes and commands.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "scenes/notation/Fields.h"
#include "scenes/notation/Names.h"

namespace scene_notation {
namespace {

using nlohmann::json;

std::string ProblemOf(const std::function<void()>& reading) {
    try {
        reading();
    } catch (const SceneError& error) {
        return error.what();
    }
    return "";
}

TEST(Numbers, InfiniteOnesAndNanAreWrittenAsTexts) {
    EXPECT_EQ(ExpectNumber({{"double", "-inf"}}, ""), -std::numeric_limits<double>::infinity());
    EXPECT_EQ(ExpectNumber({{"double", "inf"}}, ""), std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(ExpectNumber({{"double", "nan"}}, "")));
    EXPECT_THROW(ExpectNumber({{"double", "many"}}, ""), SceneError);
    EXPECT_THROW(ExpectNumber({{"double", "inf"}, {"x", 1}}, ""), SceneError);
    EXPECT_THROW(ExpectNumber({{"x", "inf"}}, ""), SceneError);
}

TEST(Numbers, DurationIsADayAtMost) {
    EXPECT_EQ(ExpectDuration(86400, ""), 86400);
    EXPECT_THROW(ExpectDuration(86401, ""), SceneError);
    EXPECT_THROW(ExpectDuration(-0.001, ""), SceneError);
    EXPECT_THROW(ExpectDuration({{"double", "nan"}}, ""), SceneError);
}

TEST(Numbers, WholeOnesFitIntoSixtyFourBits) {
    constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(ExpectInteger(kLargest, ""), kLargest);
    EXPECT_EQ(ProblemOf([] { ExpectInteger(std::uint64_t{1} << 63, "there"); }),
              "there: the number 9223372036854775808 is out of range");
    EXPECT_EQ(ProblemOf([] { ExpectInteger(5.0, "there"); }),
              "there: expected a whole number, got number");
    EXPECT_EQ(ProblemOf([] { ExpectErrorCode(std::int64_t{1} << 31, "there"); }),
              "there: the number 2147483648 is out of range");
}

TEST(Fields, OfAnotherNameThanTheKnownOnesAreRefused) {
    ExpectOnly({{"known", 1}, {"comment", "anything"}}, "there", {"known", "other"});
    EXPECT_EQ(ProblemOf([] {
                  ExpectOnly({{"unknown", 1}}, "there", {"known"});
              }),
              R"(there: unknown key "unknown")");
    EXPECT_EQ(ProblemOf([] { Required(json::object(), "known", "there"); }),
              R"(there: "known" is missing)");
}

TEST(Fields, NestAsDeepAsAValueCan) {
    json deepest = 1;
    for (std::size_t depth = 0; depth < kDeepestJson; ++depth) {
        deepest = json::array({std::move(deepest)});
    }
    ExpectShallow(deepest, "there");
    const json deeper = {{"key", deepest}};
    EXPECT_EQ(ProblemOf([&] { ExpectShallow(deeper, "there"); }), "there: nested too deep");
}

TEST(Fields, HavePlacesOfReadableLength) {
    std::string place;
    for (int depth = 0; depth < 100; ++depth) {
        place = Place(Place(place, "AXChildren"), 7);
    }
    EXPECT_LT(place.size(), 220U);
    EXPECT_TRUE(place.starts_with("AXChildren[7].AXChildren[7]"));
    EXPECT_TRUE(place.ends_with("].AXChildren[7]"));
    EXPECT_NE(place.find("..."), std::string::npos);
}

TEST(Fields, ProblemsAreOneLineWhateverTheTextsHold) {
    EXPECT_EQ(std::string(SceneError("a\nb", "c\x7F").what()), "a?b: c?");
    const std::string unfinished = "{\"" + std::string(100000, 'a');
    EXPECT_THAT(ProblemOf([&] { ParseJson(unfinished, "there"); }),
                AllOf(testing::EndsWith("aaa..."), testing::SizeIs(testing::Lt(250))));
    EXPECT_THAT(ProblemOf([] { ParseJson("{\n]", "there"); }),
                testing::StartsWith("there: parse error at line 2"));
}

}  // namespace
}  // namespace scene_notation
