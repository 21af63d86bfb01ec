// How krt9ctl ends: the one table for its exit status, its help and its JSON error names.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace krt9ctl {

enum class ExitCode : int {
    ok = 0,
    failure = 1,
    usage = 2,
    noDriver = 3,
    noReply = 4,
    timeOut = 5,
    transport = 6,
    badReply = 7,
    nameTaken = 8,
    noDesktop = 9,
    refused = 10,
    accessibility = 11,
    outOfReach = 12,
    notThere = 13,
    unmet = 14,
    differs = 15,
    badReport = 16,
    // Of doctor.
    companion = 20,
    permission = 21,
    front = 22,
    controls = 23,
    controller = 24,
    translations = 25,
    versions = 26,
    secondDriver = 27,
    // As shells report the end by SIGHUP, SIGINT, SIGPIPE and SIGTERM.
    hungUp = 129,
    interrupted = 130,
    pipeClosed = 141,
    terminated = 143,
};

struct ExitCodeRow {
    ExitCode code;
    std::string_view name;  // in JSON, under "error"
    std::string_view meaning;
};

std::span<const ExitCodeRow> ExitCodes();
std::string_view ExitCodeName(ExitCode code);

// The table as text, one code a line, for the help.
std::string ExitCodeHelp();

}  // namespace krt9ctl
