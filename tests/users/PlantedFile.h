// Something that lies where it should not, and the programs that must leave it alone.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace test_support {

// What a path holds, with all below it: kinds, modes, owners, sizes, where links lead and what
// files hold. Links are not followed. Two equal texts: nothing was touched.
std::string Described(const std::filesystem::path& path);

enum class Ending {
    refusal,  // by itself, with status 1 and one line
    signal,   // it goes on, and ends with status 0 on SIGINT
};

struct Program {
    std::string path;
    std::vector<std::string> arguments;
    std::string prefix;    // of its line
    std::string goesOnAt;  // what it prints once it is through with its start
    Ending ending = Ending::refusal;
};

Program Driver();
Program Desktop();
Program Control(const std::vector<std::string>& arguments);

// Runs it to its end. It prints exactly one line that names the path, with the reason.
void ExpectOneLine(const Program& program, const std::string& path, const std::string& reason);

// Runs it to its end. It does not mention the path.
void ExpectNoLine(const Program& program, const std::string& path);

}  // namespace test_support
