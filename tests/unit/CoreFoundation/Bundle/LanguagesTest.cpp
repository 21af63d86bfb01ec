#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/CoreFoundation/Bundle/Languages.h"

namespace {

using bundle::OrderLocalizations;
using bundle::PreferredLanguages;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Localizations, TheUsersFirstLanguageWins) {
    EXPECT_THAT(OrderLocalizations({"de", "en", "fr"}, {"fr", "de"}, "en"),
                ElementsAre("fr", "de", "en"));
}

TEST(Localizations, ALanguageWithoutRegionServesItsRegions) {
    EXPECT_THAT(OrderLocalizations({"de", "en"}, {"de-AT"}, ""), ElementsAre("de", "en"));
    EXPECT_THAT(OrderLocalizations({"zh", "zh-Hans"}, {"zh-Hans-CN"}, ""),
                ElementsAre("zh-Hans", "zh"));
}

TEST(Localizations, AnotherRegionDoesNotServe) {
    EXPECT_THAT(OrderLocalizations({"en-GB", "de"}, {"en-US"}, "de"), ElementsAre("de"));
}

TEST(Localizations, UnderscoreAndHyphenAreTheSame) {
    EXPECT_THAT(OrderLocalizations({"fr_CA", "fr"}, {"fr-CA"}, ""), ElementsAre("fr_CA", "fr"));
}

TEST(Localizations, OldEnglishNamesServe) {
    EXPECT_THAT(OrderLocalizations({"English", "French", "German", "Japanese"}, {"ja", "de"}, ""),
                ElementsAre("Japanese", "German", "English"));
}

TEST(Localizations, DevelopmentRegionThenBaseThenEnglishFollow) {
    EXPECT_THAT(OrderLocalizations({"Base", "en", "fr", "it"}, {"nl"}, "fr"),
                ElementsAre("fr", "Base", "en"));
    EXPECT_THAT(OrderLocalizations({"de", "fr"}, {"nl"}, ""), IsEmpty());
}

class Setting : public ::testing::Test {
  protected:
    void TearDown() override { unsetenv("KRT9_LANGUAGES"); }
};

TEST_F(Setting, WithoutItThePreferredLanguageIsEnglish) {
    unsetenv("KRT9_LANGUAGES");
    EXPECT_THAT(PreferredLanguages(), ElementsAre("en"));
}

TEST_F(Setting, NamesLanguagesInOrder) {
    setenv("KRT9_LANGUAGES", "de-AT,,fr", 1);
    EXPECT_THAT(PreferredLanguages(), ElementsAre("de-AT", "fr"));
}

TEST_F(Setting, EmptyMeansNoLanguageIsPreferred) {
    setenv("KRT9_LANGUAGES", "", 1);
    EXPECT_THAT(PreferredLanguages(), IsEmpty());
}

}  // namespace
