#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "platform/LocalSocket/SessionDirectory.h"
#include "tests/support/SessionFixture.h"

namespace local_socket {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

// The folders are made inside the folder of a session, and removed with it.
class SessionDirectoryTest : public testing::Test {
  protected:
    std::string Use(const std::string& name) {
        const std::string path = (session_.Path() / name).string();
        setenv("KRT9_SESSION_DIR", path.c_str(), 1);
        return path;
    }

    void ExpectRefused(const std::string& reason) {
        std::string problem;
        EXPECT_FALSE(OpenSessionDirectory(IfMissing::make, &problem)) << "the folder was accepted";
        EXPECT_THAT(problem, AllOf(HasSubstr(reason), HasSubstr(SessionDirectoryPath()),
                                   Not(HasSubstr("\n"))));
    }

    test_support::SessionFixture session_;
};

TEST_F(SessionDirectoryTest, IsMadePrivateToItsUser) {
    const std::string path = Use("new");
    std::string problem;
    ASSERT_TRUE(OpenSessionDirectory(IfMissing::make, &problem)) << problem;
    struct stat status {};
    ASSERT_EQ(lstat(path.c_str(), &status), 0);
    EXPECT_TRUE(S_ISDIR(status.st_mode));
    EXPECT_EQ(status.st_mode & 07777, 0700U);
}

TEST_F(SessionDirectoryTest, IsOpenedAgainWhenItExists) {
    Use("new");
    std::string problem;
    ASSERT_TRUE(OpenSessionDirectory(IfMissing::make, &problem)) << problem;
    EXPECT_TRUE(OpenSessionDirectory(IfMissing::make, &problem)) << problem;
    EXPECT_TRUE(OpenSessionDirectory(IfMissing::leave, &problem)) << problem;
}

TEST_F(SessionDirectoryTest, IsLeftMissingWhenNothingIsToBeMade) {
    const std::string path = Use("new");
    std::string problem;
    EXPECT_FALSE(OpenSessionDirectory(IfMissing::leave, &problem));
    EXPECT_EQ(problem, "");
    EXPECT_FALSE(fs::exists(path));
}

TEST_F(SessionDirectoryTest, IsRefusedWhenOthersMayEnter) {
    const std::string path = Use("open");
    ASSERT_EQ(mkdir(path.c_str(), 0755), 0);
    ASSERT_EQ(chmod(path.c_str(), 0755), 0);
    ExpectRefused("has mode 0755 instead of 0700");
}

TEST_F(SessionDirectoryTest, IsRefusedWithASpecialModeBit) {
    const std::string path = Use("sticky");
    ASSERT_EQ(mkdir(path.c_str(), 0700), 0);
    ASSERT_EQ(chmod(path.c_str(), 01700), 0);
    ExpectRefused("has mode 1700 instead of 0700");
}

TEST_F(SessionDirectoryTest, IsRefusedWhenItIsASymbolicLink) {
    ASSERT_EQ(mkdir((session_.Path() / "real").c_str(), 0700), 0);
    fs::create_symlink(session_.Path() / "real", session_.Path() / "link");
    Use("link");
    ExpectRefused("is a symbolic link");
}

TEST_F(SessionDirectoryTest, IsRefusedWhenItIsASymbolicLinkWrittenWithASlash) {
    ASSERT_EQ(mkdir((session_.Path() / "real").c_str(), 0700), 0);
    fs::create_symlink(session_.Path() / "real", session_.Path() / "link");
    Use("link//");
    ExpectRefused("is a symbolic link");
}

TEST_F(SessionDirectoryTest, IsRefusedWhenALinkLeadsNowhere) {
    fs::create_symlink(session_.Path() / "nowhere", session_.Path() / "link");
    Use("link");
    ExpectRefused("is a symbolic link");
    EXPECT_FALSE(fs::exists(session_.Path() / "nowhere"));
}

TEST_F(SessionDirectoryTest, IsRefusedWhenAFileLiesInItsPlace) {
    std::ofstream(Use("file")) << "text";
    ExpectRefused("is not a folder");
}

TEST_F(SessionDirectoryTest, IsRefusedWhenItCannotBeMade) {
    Use("missing/new");
    ExpectRefused("cannot be made");
}

TEST_F(SessionDirectoryTest, IsRefusedWhenThePathIsRelative) {
    setenv("KRT9_SESSION_DIR", "relative", 1);
    ExpectRefused("is not an absolute path");
}

TEST_F(SessionDirectoryTest, IsRefusedWhenAnotherUserOwnsIt) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can give a folder to another user";
    }
    const std::string path = Use("foreign");
    ASSERT_EQ(mkdir(path.c_str(), 0700), 0);
    ASSERT_EQ(chown(path.c_str(), 65534, 65534), 0);
    ExpectRefused("belongs to user 65534");
}

TEST_F(SessionDirectoryTest, LiesInTheRuntimeFolderUnlessItIsNamed) {
    unsetenv("KRT9_SESSION_DIR");
    setenv("XDG_RUNTIME_DIR", session_.Path().c_str(), 1);
    EXPECT_EQ(SessionDirectoryPath(), (session_.Path() / "krt9").string());
    unsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(SessionDirectoryPath(), "/tmp/krt9-" + std::to_string(geteuid()));
}

TEST_F(SessionDirectoryTest, LosesTheSlashesBehindItsNameButNotThatOfTheRoot) {
    const std::string path = Use("folder");
    setenv("KRT9_SESSION_DIR", (path + "//").c_str(), 1);
    EXPECT_EQ(SessionDirectoryPath(), path);
    setenv("KRT9_SESSION_DIR", "///", 1);
    EXPECT_EQ(SessionDirectoryPath(), "/");
}

TEST_F(SessionDirectoryTest, IgnoresEmptyVariables) {
    setenv("KRT9_SESSION_DIR", "", 1);
    setenv("XDG_RUNTIME_DIR", "", 1);
    EXPECT_EQ(SessionDirectoryPath(), "/tmp/krt9-" + std::to_string(geteuid()));
    unsetenv("XDG_RUNTIME_DIR");
}

}  // namespace
}  // namespace local_socket
