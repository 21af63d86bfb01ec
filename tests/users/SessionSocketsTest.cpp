// The processes of a session listen on its sockets and nowhere else: no network port, and no socket
// without a file, whose name anybody on the machine could use.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "tests/reliability/Together.h"

namespace {

namespace fs = std::filesystem;
using test_support::Role;

// The numbers of the sockets that a process has open.
std::set<std::string> SocketsOf(pid_t pid) {
    std::set<std::string> sockets;
    for (const auto& entry : fs::directory_iterator("/proc/" + std::to_string(pid) + "/fd")) {
        const std::string target = fs::read_symlink(entry.path()).string();
        if (target.starts_with("socket:[")) {
            sockets.insert(target.substr(8, target.size() - 9));
        }
    }
    return sockets;
}

// The rows of a table of /proc/PID/net whose column holds one of these numbers.
std::vector<std::vector<std::string>> Rows(pid_t pid, const std::string& table, std::size_t column,
                                           const std::set<std::string>& numbers) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/net/" + table);
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        std::vector<std::string> row;
        for (std::string word; words >> word;) {
            row.push_back(word);
        }
        if (row.size() > column && numbers.contains(row[column])) {
            rows.push_back(row);
        }
    }
    return rows;
}

}  // namespace

TEST(SessionSockets, AreItsThreeSocketFilesOnly) {
    test_support::Stage stage;
    StartTogether(stage);
    ASSERT_TRUE(test_support::DriverSeesTheEditor());
    EXPECT_THAT(stage.Session().Files(),
                testing::IsSupersetOf({"KRT9Background", "VEK_KRT9", "krt9-desktop"}));
    constexpr std::size_t kFlags = 3;
    constexpr std::size_t kNumberOfUnix = 6;
    constexpr std::size_t kPath = 7;
    constexpr std::size_t kNumberOfInternet = 9;
    for (const Role role : test_support::kRoles) {
        const pid_t pid = stage.Process(role).pid();
        const std::set<std::string> sockets = SocketsOf(pid);
        EXPECT_FALSE(sockets.empty());
        int listening = 0;
        for (const auto& row : Rows(pid, "unix", kNumberOfUnix, sockets)) {
            listening += row[kFlags] == "00010000" ? 1 : 0;
            EXPECT_FALSE(row.size() > kPath && row[kPath].starts_with("@")) << row[kPath];
        }
        EXPECT_EQ(listening, 1) << Name(role);
        for (const char* table : {"tcp", "tcp6", "udp", "udp6", "raw", "raw6"}) {
            EXPECT_TRUE(Rows(pid, table, kNumberOfInternet, sockets).empty())
                << Name(role) << " " << table;
        }
    }
}
