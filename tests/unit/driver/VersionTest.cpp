// The version that the driver keeps and logs, from bundles around a program that constructs one.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/support/ChildProcess.h"
#include "tests/support/Paths.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using test_support::ProcessResult;
using testing::HasSubstr;

class Version : public testing::Test {
  protected:
    // The kept version, with these entries in the bundle's information.
    std::string Kept(const std::string& entries) {
        folder_.Write("X.app/Contents/Info.plist",
                      R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>)" +
                          entries + "</dict></plist>");
        return KeptWithoutNewInformation();
    }

    std::string KeptOf(const std::string& version) {
        return Kept(
            "<key>CFBundleIdentifier</key><string>com.example.x</string>"
            "<key>CFBundleVersion</key>" +
            version);
    }

    std::string KeptOfText(const std::string& version) {
        return KeptOf("<string>" + version + "</string>");
    }

    std::string KeptWithoutNewInformation() {
        const std::filesystem::path program = folder_.Path() / "X.app/Contents/MacOS/program";
        std::filesystem::create_directories(program.parent_path());
        std::filesystem::copy_file(KRT9_BINARIES "/report_version", program,
                                   std::filesystem::copy_options::overwrite_existing);
        const ProcessResult result = test_support::RunProcess(program.string(), {});
        EXPECT_EQ(result.status, 0) << result.standardError;
        log_ = result.standardError;
        return result.standardOutput;
    }

    test_support::SessionFixture session_;
    test_support::TemporaryFolder folder_;
    std::string log_;
};

TEST_F(Version, IsKeptAndLoggedWithTheBundleIdentifier) {
    EXPECT_EQ(KeptOfText("2.1b3"), "2.1b3");
    EXPECT_THAT(log_, HasSubstr("com.example.x version 2.1b3\n"));
}

TEST_F(Version, BundleWithoutVersionStoresUnknownVersion) {
    EXPECT_EQ(Kept("<key>CFBundleIdentifier</key><string>com.example.x</string>"),
              "unknown version");
    EXPECT_THAT(log_, HasSubstr("com.example.x version (null)\n"));
}

TEST_F(Version, WithoutInformationAtAllIsUnknown) {
    EXPECT_EQ(KeptWithoutNewInformation(), "unknown version");
    EXPECT_THAT(log_, HasSubstr("(null) version (null)\n"));
}

TEST_F(Version, ThirtyOneBytesFit) {
    const std::string version(31, '1');
    EXPECT_EQ(KeptOfText(version), version);
}

TEST_F(Version, ThirtyTwoBytesOrMoreDoNotFitAndAreUnknownButLogged) {
    for (const std::size_t length : {32u, 33u, 5000u}) {
        const std::string version(length, '1');
        EXPECT_EQ(KeptOfText(version), "unknown version") << length << " bytes";
        EXPECT_THAT(log_, HasSubstr("version " + version + "\n"));
    }
}

TEST_F(Version, TextIsKeptInTheDefaultEncodingWhoseBytesCount) {
    std::string utf8;
    for (int character = 0; character < 31; ++character) {
        utf8 += "é";
    }
    EXPECT_EQ(KeptOfText(utf8), std::string(31, '\x8E'));
    EXPECT_EQ(KeptOfText(utf8 + "é"), "unknown version");
}

TEST_F(Version, TextThatTheDefaultEncodingLacksIsUnknown) {
    EXPECT_EQ(KeptOfText("1.日本"), "unknown version");
    EXPECT_THAT(log_, HasSubstr("version 1.日本\n"));
}

TEST_F(Version, EmptyTextIsPresentAndKept) {
    EXPECT_EQ(KeptOfText(""), "");
}

TEST_F(Version, ThatIsNoTextIsUnknownButLogged) {
    EXPECT_EQ(KeptOf("<integer>7</integer>"), "unknown version");
    EXPECT_THAT(log_, HasSubstr("com.example.x version 7\n"));
    for (const char* other : {"<true/>", "<array/>", "<dict/>", "<data>AAAA</data>"}) {
        EXPECT_EQ(KeptOf(other), "unknown version") << other;
    }
}

}  // namespace
