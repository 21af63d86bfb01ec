#include "platform/Foundation/LogSink.h"

#include <unistd.h>

#include <cerrno>
#include <map>
#include <mutex>
#include <utility>

namespace foundation {
namespace {

struct Listeners {
    std::mutex mutex;
    std::map<int, LogListener> byNumber;
    int next = 1;
};

// Never destroyed: objects that are destroyed while the process ends may log.
Listeners& AllListeners() {
    static Listeners& listeners = *new Listeners;
    return listeners;
}

// In as few writes as the system allows, so that lines of several processes do not mix.
void WriteToStandardError(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(STDERR_FILENO, bytes.data(), bytes.size());
        if (written > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            return;
        }
    }
}

}  // namespace

int AddLogListener(LogListener listener) {
    Listeners& listeners = AllListeners();
    const std::lock_guard lock(listeners.mutex);
    const int number = listeners.next++;
    listeners.byNumber.emplace(number, std::move(listener));
    return number;
}

void RemoveLogListener(int number) {
    Listeners& listeners = AllListeners();
    const std::lock_guard lock(listeners.mutex);
    listeners.byNumber.erase(number);
}

void WriteLogLine(Log log, int priority, const std::string& prefix, std::string_view text) {
    const int savedError = errno;
    std::string line = prefix;
    line += text.substr(0, text.find_last_not_of('\n') + 1);
    line += '\n';

    Listeners& listeners = AllListeners();
    {
        const std::lock_guard lock(listeners.mutex);
        WriteToStandardError(line);
        for (const auto& [number, listener] : listeners.byNumber) {
            listener(log, priority, text);
        }
    }
    errno = savedError;
}

}  // namespace foundation
