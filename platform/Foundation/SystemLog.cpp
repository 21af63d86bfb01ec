// syslog, in place of the C library's. The driver logs at priority 0, which the real log would
// broadcast to every terminal of the machine; here a line goes to stderr as "<priority> text".
//
// <syslog.h> is not included: it may define these functions inline.
#include <cstdarg>
#include <cstdio>
#include <string>

#include "platform/Foundation/LogSink.h"

namespace {

constexpr int kPriorityMask = 7;  // the rest of the number is the facility

// The analyzer does not see that every caller has initialized `arguments`.
// NOLINTBEGIN(clang-analyzer-valist.Uninitialized)
std::string Formatted(const char* format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    std::string text(length < 0 ? 0U : static_cast<std::size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    return text;
}
// NOLINTEND(clang-analyzer-valist.Uninitialized)

}  // namespace

extern "C" {

void vsyslog(int priority, const char* format, va_list arguments);
void syslog(int priority, const char* format, ...);
void __vsyslog_chk(int priority, int flag, const char* format, va_list arguments);
void __syslog_chk(int priority, int flag, const char* format, ...);

void vsyslog(int priority, const char* format, va_list arguments) {
    const int level = priority & kPriorityMask;
    foundation::WriteLogLine(foundation::Log::system, level, "<" + std::to_string(level) + "> ",
                             Formatted(format, arguments));
}

void syslog(int priority, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    vsyslog(priority, format, arguments);
    va_end(arguments);
}

void __vsyslog_chk(int priority, int, const char* format, va_list arguments) {
    vsyslog(priority, format, arguments);
}

void __syslog_chk(int priority, int, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    vsyslog(priority, format, arguments);
    va_end(arguments);
}

}  // extern "C"
