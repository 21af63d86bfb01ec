#include "platform/UnifiedLogging/Log.h"

#include <os/log.h>

#include <list>
#include <mutex>

os_log_t os_log_create(const char* subsystem, const char* category) {
    static std::mutex& mutex = *new std::mutex;
    static std::list<os_log_s>& logs = *new std::list<os_log_s>;
    const std::lock_guard lock(mutex);
    for (os_log_s& log : logs) {
        if (log.subsystem == subsystem && log.category == category) {
            return &log;
        }
    }
    return &logs.emplace_back(os_log_s{subsystem, category});
}
