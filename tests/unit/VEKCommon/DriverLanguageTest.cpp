#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "VEKCommon/MessageCodes.h"
#include "platform/Testing/LiveObjects.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Companion.h"
#include "tests/support/DriverInspector.h"
#include "tests/support/Paths.h"
#include "tests/support/SentMessages.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestDriver.h"
#include "tests/unit/VEKCommon/Failures.h"

namespace {

// The main bundle of this very program has no strings.
class DriverLanguage : public ::testing::Test {
  protected:
    void SetLanguage(const char* tag) {
        std::strncpy(DriverInspector::Language(*driver_), tag,
                     sizeof DriverInspector::Language(*driver_));
    }

    platform_testing::AutoreleasePool pool_;
    test_support::SessionFixture session_;
    test_support::Companion companion_;
    test_support::TestDriver driver_;
};

TEST_F(DriverLanguage, IsEmptyBeforeTheTagIsTaken) {
    EXPECT_STREQ(DriverInspector::Language(*driver_), "");
}

TEST_F(DriverLanguage, WithoutAnEntryInTheBundleTheTagIsTheKeyItself) {
    EXPECT_TRUE(driver_->GetLocale());
    EXPECT_STREQ(DriverInspector::Language(*driver_), "VEKLanguage");
}

TEST_F(DriverLanguage, WhatIsBehindTheTagsTerminatorStays) {
    const std::size_t size = sizeof "VEKLanguage";
    auto& language = DriverInspector::Language(*driver_);
    std::fill(std::begin(language), std::end(language), '#');
    EXPECT_TRUE(driver_->GetLocale());
    EXPECT_EQ(std::string(language, size), std::string("VEKLanguage", size));
    EXPECT_EQ(std::string(language + size, std::end(language)),
              std::string(sizeof language - size, '#'));
}

TEST_F(DriverLanguage, TagIsSentWithItsTerminator) {
    driver_->GetLocale();
    const auto sent = test_support::TakeSent(*driver_, companion_);
    ASSERT_EQ(sent.size(), 1U);
    EXPECT_EQ(sent[0].code, kJSLg);
    const std::string expected("VEKLanguage", sizeof "VEKLanguage");
    EXPECT_EQ(std::string(sent[0].body.begin(), sent[0].body.end()), expected);
}

TEST_F(DriverLanguage, WithoutAStringThereIsNoTagAndTheNextTickAsksAgain) {
    SetLanguage("de");
    Failures::Current().localizedString = true;
    EXPECT_FALSE(driver_->GetLocale());
    Failures::Current() = Failures();
    EXPECT_TRUE(test_support::TakeSent(*driver_, companion_).empty());
    EXPECT_STREQ(DriverInspector::Language(*driver_), "de") << "as it was";
    EXPECT_TRUE(driver_->GetLocale());
}

TEST_F(DriverLanguage, CurrentLanguageIsCopiedAndPadded) {
    SetLanguage("de");
    char out[16];
    std::memset(out, 'x', sizeof out);
    CVEK_UserSpaceDriver::GetCurrentLanguage(out, sizeof out);
    EXPECT_EQ(std::string(out, sizeof out), std::string("de") + std::string(14, '\0'));
}

TEST_F(DriverLanguage, CurrentLanguageOfFifteenCharactersIsTerminated) {
    SetLanguage("abcdefghijklmno");
    char out[16];
    CVEK_UserSpaceDriver::GetCurrentLanguage(out, sizeof out);
    EXPECT_STREQ(out, "abcdefghijklmno");
}

TEST_F(DriverLanguage, CurrentLanguageOfSixteenCharactersOrMoreIsNotTerminated) {
    SetLanguage("abcdefghijklmnopqrs");
    char out[17];
    std::memset(out, 'x', sizeof out);
    CVEK_UserSpaceDriver::GetCurrentLanguage(out, 16);
    EXPECT_EQ(std::string(out, sizeof out), "abcdefghijklmnopx");
}

TEST(DriverLanguageWithoutADriver, LeavesTheBufferUntouched) {
    ASSERT_EQ(CVEK_UserSpaceDriver::sSelf, nullptr);
    char out[16];
    std::memset(out, 'x', sizeof out);
    CVEK_UserSpaceDriver::GetCurrentLanguage(out, sizeof out);
    EXPECT_EQ(std::string(out, sizeof out), std::string(16, 'x'));
}

// A program in a bundle of its own, whose strings give the tag.
class BundledLanguage : public ::testing::Test {
  protected:
    std::string Reported(const std::string& tag, const std::vector<std::string>& arguments = {}) {
        folder_.Write("X.app/Contents/Resources/en.lproj/Localizable.strings",
                      "\"VEKLanguage\" = \"" + tag + "\";\n");
        const std::filesystem::path program = folder_.Path() / "X.app/Contents/MacOS/program";
        std::filesystem::create_directories(program.parent_path());
        std::filesystem::copy_file(KRT9_BINARIES "/report_language", program,
                                   std::filesystem::copy_options::overwrite_existing);
        const test_support::ProcessResult result =
            test_support::RunProcess(program.string(), arguments, {{"KRT9_LANGUAGES", "en"}});
        EXPECT_EQ(result.status, 0) << result.standardError;
        return result.standardOutput;
    }

    test_support::SessionFixture session_;
    test_support::TemporaryFolder folder_;
};

TEST_F(BundledLanguage, TagComesFromTheStringsOfTheBundle) {
    EXPECT_EQ(Reported("de"), "true [de] JSLg:646500\n");
}

TEST_F(BundledLanguage, ThirtyOneBytesFit) {
    const std::string tag(31, 'a');
    std::string hex;
    for (std::size_t index = 0; index < tag.size(); ++index) {
        hex += "61";
    }
    EXPECT_EQ(Reported(tag), "true [" + tag + "] JSLg:" + hex + "00\n");
}

TEST_F(BundledLanguage, TagOfThirtyTwoBytesIsNotTakenAndNothingIsSent) {
    EXPECT_EQ(Reported(std::string(32, 'a')), "false []\n");
}

TEST_F(BundledLanguage, TagThatTheSystemEncodingLacksIsNotTakenAndNothingIsSent) {
    EXPECT_EQ(Reported("日本"), "false []\n");
}

TEST_F(BundledLanguage, TagIsSentInTheSystemEncoding) {
    EXPECT_EQ(Reported("é"), "true [\x8E] JSLg:8e00\n");
}

TEST_F(BundledLanguage, EmptyTagIsTakenAndSent) {
    EXPECT_EQ(Reported(""), "true [] JSLg:00\n");
}

TEST_F(BundledLanguage, WithoutACompanionTheTagIsTakenAllTheSame) {
    EXPECT_EQ(Reported("de", {"without companion"}), "true [de]\n");
}

}  // namespace
