#include "platform/Testing/LogCapture.h"

#include <ostream>

#include "platform/Foundation/LogSink.h"

namespace platform_testing {

void PrintTo(const LogLine& line, std::ostream* stream) {
    if (line.log == LogLine::Log::console) {
        *stream << "NSLog";
    } else {
        *stream << "syslog " << line.priority;
    }
    *stream << " \"" << line.text << '"';
}

LogCapture::LogCapture()
    : listener_(foundation::AddLogListener(
          [this](foundation::Log log, int priority, std::string_view text) {
              const std::lock_guard lock(mutex_);
              lines_.push_back(
                  {log == foundation::Log::console ? LogLine::Log::console : LogLine::Log::system,
                   priority, std::string(text)});
          })) {}

LogCapture::~LogCapture() {
    foundation::RemoveLogListener(listener_);
}

std::vector<LogLine> LogCapture::Lines() const {
    const std::lock_guard lock(mutex_);
    return lines_;
}

std::vector<std::string> LogCapture::Texts(LogLine::Log log) const {
    const std::lock_guard lock(mutex_);
    std::vector<std::string> texts;
    for (const LogLine& line : lines_) {
        if (line.log == log) {
            texts.push_back(line.text);
        }
    }
    return texts;
}

std::vector<std::string> LogCapture::ConsoleTexts() const {
    return Texts(LogLine::Log::console);
}

std::vector<std::string> LogCapture::SystemTexts() const {
    return Texts(LogLine::Log::system);
}

void LogCapture::Clear() {
    const std::lock_guard lock(mutex_);
    lines_.clear();
}

}  // namespace platform_testing
