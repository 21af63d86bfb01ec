// Where log lines go: stderr, and the registered listeners.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace foundation {

enum class Log {
    console,  // NSLog
    system,   // syslog
};

// `text` is the text as it was logged, without a prefix; it may or may not end in a newline.
using LogListener = std::function<void(Log log, int priority, std::string_view text)>;

// Returns a number with which to remove it. The listener is called on the logging thread, one line
// at a time, and must not log.
int AddLogListener(LogListener listener);
void RemoveLogListener(int number);

// Writes one line to stderr, ended by exactly one newline, and calls the listeners. Any thread.
void WriteLogLine(Log log, int priority, const std::string& prefix, std::string_view text);

}  // namespace foundation
