// A process started by a test, on Linux and on macOS. Its output is collected; waiting is for
// output or for its end, never for time to pass.
#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/Patience.h"

namespace test_support {

class ChildProcess {
  public:
    // Starts `path` with `arguments` (without the program's own name) and the test's environment,
    // changed by `environment`. Standard input is /dev/null.
    explicit ChildProcess(const std::string& path, const std::vector<std::string>& arguments = {},
                          const std::map<std::string, std::string>& environment = {});
    // Kills the process if it still runs.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // Waits until the text is somewhere in what was printed on either stream; false when the
    // process ended or `seconds` passed without it.
    bool WaitForOutput(std::string_view text, double seconds = kPatience);

    // Waits for the end: the exit status, or 128 + signal number, or -1 when `seconds` passed.
    int WaitForExit(double seconds = kPatience);

    // Reads what was printed so far and discards it, so that the process never blocks on output.
    void ForgetOutput();

    void Signal(int signalNumber);
    pid_t pid() const { return pid_; }

    // What has been read so far; complete after WaitForExit.
    const std::string& StandardOutput() const { return streams_[0].text; }
    const std::string& StandardError() const { return streams_[1].text; }
    std::string Output() const { return StandardOutput() + StandardError(); }

  private:
    struct Stream {
        int descriptor = -1;
        std::string text;
    };

    // Waits for output or the process's end; false when neither came in time.
    bool Pump(double seconds);
    bool ReadAvailable(double seconds);
    void Read(Stream& stream);
    bool IsDrained() const { return streams_[0].descriptor < 0 && streams_[1].descriptor < 0; }
    bool Reap(int options);

    pid_t pid_ = -1;
    bool ended_ = false;
    int status_ = 0;
    Stream streams_[2];
};

// Runs a program to its end.
struct ProcessResult {
    int status;  // as ChildProcess::WaitForExit
    std::string standardOutput;
    std::string standardError;
};
ProcessResult RunProcess(const std::string& path, const std::vector<std::string>& arguments,
                         const std::map<std::string, std::string>& environment = {},
                         double seconds = kPatience);

}  // namespace test_support
