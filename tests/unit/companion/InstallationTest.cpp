// What the component "companion" installs is enough to build a companion with.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"
#include "tests/support/Paths.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using test_support::RunProcess;

class InstalledCompanion : public testing::Test {
  protected:
    void SetUp() override {
        const auto build = std::filesystem::path(KRT9_BINARIES).parent_path();
        const auto result =
            RunProcess("/usr/bin/env", {"cmake", "--install", build.string(), "--prefix", Path(""),
                                        "--component", "companion"});
        ASSERT_EQ(result.status, 0) << result.standardError;
    }

    std::string Path(const std::string& name) const { return (folder_.Path() / name).string(); }

    std::vector<std::string> Files() const {
        std::vector<std::string> files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_.Path())) {
            if (entry.is_regular_file()) {
                files.push_back(entry.path().lexically_relative(folder_.Path()).string());
            }
        }
        return files;
    }

  private:
    test_support::TemporaryFolder folder_;
};

TEST_F(InstalledCompanion, IsHeaderArchiveAndSample) {
    EXPECT_THAT(Files(), testing::UnorderedElementsAre("include/companion/KRT9Companion.h",
                                                       "lib/libkrt9_companion.a",
                                                       "share/krt9-companion/FollowEditor.cpp"));
}

// Compiled without the checkout, and linked as far as the frameworks: these are not installed.
TEST_F(InstalledCompanion, BuildsTheSampleWithNothingElseOfTheDriver) {
    const std::string frameworks =
        (std::filesystem::path(KRT9_SCENES).parent_path() / "platform" / "include").string();
    const auto compiled =
        RunProcess(KRT9_COMPILER,
                   {"-std=c++20", "-I" + Path("include"), "-isystem", frameworks, "-r", "-nostdlib",
                    "-o", Path("sample.o"), Path("share/krt9-companion/FollowEditor.cpp"),
                    Path("lib/libkrt9_companion.a")});
    ASSERT_EQ(compiled.status, 0) << compiled.standardError;
    const auto symbols = RunProcess("/usr/bin/env", {"nm", "--undefined-only", Path("sample.o")});
    ASSERT_EQ(symbols.status, 0) << symbols.standardError;
    EXPECT_THAT(symbols.standardOutput, testing::HasSubstr("CFMessagePortSendRequest"));
    EXPECT_THAT(symbols.standardOutput, testing::Not(testing::HasSubstr("krt9")));
}

}  // namespace
