// One line on the terminal that says what a long command is doing.
#pragma once

#include <condition_variable>
#include <mutex>
#include <ostream>
#include <string>
#include <thread>

namespace terminal {

// A separate thread writes the line, so that it also appears while the command waits for another
// process. Other output must call Clear before it writes. On anything but a terminal it does
// nothing.
class Progress {
  public:
    Progress(std::ostream& stream, bool isTerminal, std::string program);
    // Removes the line.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // What is being done from now on. The first line appears two seconds after the first call.
    void Now(const std::string& activity);

    // Removes the line until it is due again.
    void Clear();

  private:
    void Run();
    void Erase();

    std::ostream& stream_;
    const bool isTerminal_;
    const std::string program_;
    std::mutex mutex_;  // guards everything below, and the stream
    std::condition_variable wake_;
    std::string activity_;
    bool isShown_ = false;
    bool isDone_ = false;
    std::thread thread_;
};

}  // namespace terminal
