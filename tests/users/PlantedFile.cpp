#include "tests/users/PlantedFile.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <csignal>
#include <map>

#include "tests/support/ChildProcess.h"
#include "tests/support/Files.h"
#include "tests/support/Paths.h"
#include "tests/support/Stage.h"

namespace test_support {

namespace {

namespace fs = std::filesystem;

std::string DescribedAlone(const fs::path& path) {
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0) {
        return path.string() + " is not there\n";
    }
    std::string line =
        fmt::format("{} {:o} user {} inode {} size {}", path.string(), status.st_mode,
                    status.st_uid, status.st_ino, S_ISREG(status.st_mode) ? status.st_size : 0);
    if (S_ISLNK(status.st_mode)) {
        line += " -> " + fs::read_symlink(path).string();
    }
    if (S_ISREG(status.st_mode)) {
        line += " " + ContentOf(path);
    }
    return line + "\n";
}

std::vector<std::string> LinesWith(const std::string& output, const std::string& text) {
    std::vector<std::string> lines = LinesOf(output);
    std::erase_if(lines, [&](const std::string& line) { return line.find(text) == line.npos; });
    return lines;
}

// Its whole output, after the end that is expected of it.
std::string OutputOf(const Program& program) {
    ChildProcess process(program.path, program.arguments, Stage::DriverEnvironment());
    if (program.ending == Ending::signal) {
        EXPECT_TRUE(process.WaitForOutput(program.goesOnAt)) << process.StandardError();
        process.Signal(SIGINT);
    }
    EXPECT_EQ(process.WaitForExit(), program.ending == Ending::refusal ? 1 : 0)
        << process.StandardError();
    return process.StandardOutput() + process.StandardError();
}

}  // namespace

std::string Described(const fs::path& path) {
    std::vector<std::string> lines = {DescribedAlone(path)};
    if (fs::symlink_status(path).type() == fs::file_type::directory) {
        for (const auto& entry : fs::directory_iterator(path)) {
            lines.push_back(Described(entry.path()));
        }
    }
    std::sort(lines.begin() + 1, lines.end());
    std::string text;
    for (const std::string& line : lines) {
        text += line;
    }
    return text;
}

Program Driver() {
    return {Stage::DriverPath(), {}, "CFMessagePort", "version 1.0.0", Ending::signal};
}

Program Desktop() {
    return {Stage::DesktopPath(), {KRT9_SCENES "/editor-10.4.6.json"}, "krt9-desktop: ", "ready"};
}

Program Control(const std::vector<std::string>& arguments) {
    std::string prefix = "krt9ctl:";
    for (const std::string& argument : arguments) {
        prefix += " " + argument;
    }
    return {Stage::ControlPath(), arguments, prefix + ": ", ""};
}

void ExpectOneLine(const Program& program, const std::string& path, const std::string& reason) {
    const std::string output = OutputOf(program);
    EXPECT_THAT(LinesWith(output, path),
                testing::ElementsAre(testing::AllOf(testing::HasSubstr(program.prefix),
                                                    testing::HasSubstr(path + " " + reason))))
        << output;
    if (program.ending == Ending::refusal) {
        EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), 1) << output;
    }
}

void ExpectNoLine(const Program& program, const std::string& path) {
    EXPECT_THAT(LinesWith(OutputOf(program), path), testing::IsEmpty());
}

}  // namespace test_support
