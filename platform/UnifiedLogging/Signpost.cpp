// Signposts leave the process in the form in which the system's log tool writes them.
#include <fmt/chrono.h>
#include <os/signpost.h>
#include <unistd.h>

#include <chrono>
#include <cstdarg>
#include <nlohmann/json.hpp>

#include "platform/UnifiedLogging/Log.h"
#include "platform/UnifiedLogging/MessageText.h"
#include "platform/UnifiedLogging/Tracer.h"

namespace {

const char* TypeName(os_signpost_type_t type) {
    switch (type) {
        case OS_SIGNPOST_INTERVAL_BEGIN:
            return "begin";
        case OS_SIGNPOST_INTERVAL_END:
            return "end";
        default:
            return "event";
    }
}

// "2026-01-31 11:03:11.145000+0000"
std::string Timestamp() {
    using std::chrono::system_clock;
    const auto now = std::chrono::floor<std::chrono::microseconds>(system_clock::now());
    const auto second = std::chrono::floor<std::chrono::seconds>(now);
    return fmt::format("{:%Y-%m-%d %H:%M:%S}.{:06}+0000",
                       fmt::gmtime(system_clock::to_time_t(second)), (now - second).count());
}

std::string Line(os_log_t log, os_signpost_type_t type, os_signpost_id_t signpost, const char* name,
                 std::string message) {
    const auto machTime = std::chrono::steady_clock::now().time_since_epoch();
    const nlohmann::ordered_json object{
        {"timestamp", Timestamp()},
        {"machTimestamp", std::chrono::nanoseconds(machTime).count()},
        {"eventType", "signpostEvent"},
        {"processID", getpid()},
        {"subsystem", log->subsystem},
        {"category", log->category},
        {"signpostID", signpost},
        {"signpostType", TypeName(type)},
        {"signpostName", name},
        {"eventMessage", std::move(message)},
    };
    return object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace

bool os_signpost_enabled(os_log_t /*log*/) {
    return unified_logging::TracerListens();
}

void platform_signpost_emit(os_log_t log, os_signpost_type_t type, os_signpost_id_t signpost,
                            const char* name, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::string message = unified_logging::MessageText(format, arguments);
    va_end(arguments);
    unified_logging::SendToTracer(Line(log, type, signpost, name, std::move(message)));
}
