// A program that a test starts on macOS, and what it prints.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace mac_test {

class Program {
  public:
    // Starts it; its standard input is a pipe that ends with this object, and both its outputs go
    // where WaitForOutput looks.
    Program(const std::string& path, const std::vector<std::string>& arguments = {});
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program();  // kills it

    // Whether it prints the text, or has printed it, within the time. Each text is looked for after
    // the one before.
    bool WaitForOutput(const std::string& text, double seconds = 10);
    const std::string& Output() const { return output_; }

    void Signal(int number) const;
    // Its exit status; -1 when it still runs after the time, or was ended by a signal.
    int WaitForExit(double seconds = 10);
    pid_t ProcessID() const { return process_; }

  private:
    void ReadAvailable(double seconds);

    pid_t process_ = -1;
    int input_ = -1;    // our end of its standard input
    int outputs_ = -1;  // our end of its outputs
    std::string output_;
    std::size_t seen_ = 0;
};

// Runs it to its end: what it printed, without the last line end; "status N: ..." unless it ended
// with status 0.
std::string OutputOf(const std::string& path, const std::vector<std::string>& arguments);

}  // namespace mac_test
