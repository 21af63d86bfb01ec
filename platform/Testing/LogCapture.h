// What a test captures of the logs.
#pragma once

#include <iosfwd>
#include <mutex>
#include <string>
#include <vector>

namespace platform_testing {

struct LogLine {
    enum class Log { console, system };  // NSLog, syslog

    Log log = Log::console;
    int priority = 0;  // syslog's, without the facility; 0 for the console
    // As it was logged: UTF-8, without a prefix, with its own newline if it has one.
    std::string text;

    friend bool operator==(const LogLine&, const LogLine&) = default;
};

// So that a failed expectation shows the line.
void PrintTo(const LogLine& line, std::ostream* stream);

// Collects every line that NSLog and syslog get during its lifetime, of all threads, in order. The
// lines go to stderr as well. Several captures may exist at once.
class LogCapture {
  public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<LogLine> Lines() const;
    std::vector<std::string> ConsoleTexts() const;  // of NSLog
    std::vector<std::string> SystemTexts() const;   // of syslog
    void Clear();

  private:
    std::vector<std::string> Texts(LogLine::Log log) const;

    mutable std::mutex mutex_;
    std::vector<LogLine> lines_;
    int listener_;
};

}  // namespace platform_testing
