// Signposts: marks of what a process does, for tools that look at it from outside.
//
// The names and formats are literals. Of a format, integers are shown; a text is shown when it is
// "%{public}s", and is "<private>" otherwise. Arguments are evaluated only while signposts are
// enabled.
#pragma once

#include <os/log.h>

#include <cstdint>

using os_signpost_id_t = std::uint64_t;

#define OS_SIGNPOST_ID_NULL static_cast<os_signpost_id_t>(0)
#define OS_SIGNPOST_ID_INVALID (~static_cast<os_signpost_id_t>(0))
// For intervals of which at most one with the same name is open in a log at a time.
#define OS_SIGNPOST_ID_EXCLUSIVE static_cast<os_signpost_id_t>(0xEEEEB0B5B2B2EEEE)

enum os_signpost_type_t : std::uint8_t {
    OS_SIGNPOST_EVENT = 0,
    OS_SIGNPOST_INTERVAL_BEGIN = 1,
    OS_SIGNPOST_INTERVAL_END = 2,
};

extern "C" {

// Whether anybody looks.
bool os_signpost_enabled(os_log_t log);

// What the macros below call.
__attribute__((format(os_log, 5, 6))) void platform_signpost_emit(os_log_t log,
                                                                  os_signpost_type_t type,
                                                                  os_signpost_id_t signpost,
                                                                  const char* name,
                                                                  const char* format, ...);

}  // extern "C"

#define PLATFORM_SIGNPOST(type, log, interval_id, name, ...)                                 \
    do {                                                                                     \
        os_log_t const signpost_log_ = (log);                                                \
        const os_signpost_id_t signpost_id_ = (interval_id);                                 \
        if (signpost_id_ != OS_SIGNPOST_ID_NULL && signpost_id_ != OS_SIGNPOST_ID_INVALID && \
            os_signpost_enabled(signpost_log_)) {                                            \
            platform_signpost_emit(signpost_log_, type, signpost_id_, "" name,               \
                                   "" __VA_OPT__(__VA_ARGS__));                              \
        }                                                                                    \
    } while (false)

#define os_signpost_event_emit(log, event_id, name, ...) \
    PLATFORM_SIGNPOST(OS_SIGNPOST_EVENT, log, event_id, name __VA_OPT__(, ) __VA_ARGS__)
#define os_signpost_interval_begin(log, interval_id, name, ...) \
    PLATFORM_SIGNPOST(OS_SIGNPOST_INTERVAL_BEGIN, log, interval_id, name __VA_OPT__(, ) __VA_ARGS__)
#define os_signpost_interval_end(log, interval_id, name, ...) \
    PLATFORM_SIGNPOST(OS_SIGNPOST_INTERVAL_END, log, interval_id, name __VA_OPT__(, ) __VA_ARGS__)
