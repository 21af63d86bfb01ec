// One signpost, as the system's log tool writes it.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace krt9ctl::trace {

using Time = std::chrono::sys_time<std::chrono::microseconds>;

struct Signpost {
    enum class Type { event, begin, end, loss };

    Type type = Type::event;
    std::int64_t pid = 0;
    Time time;
    std::string name;
    std::map<std::string, std::string, std::less<>> fields;  // of a message "key=value key=value"
    std::uint64_t lost = 0;                                  // of a loss

    // A field as a number; 0 for one that is not there.
    std::int64_t Number(std::string_view field) const;
    std::string Text(std::string_view field) const;
};

// Nothing for a line that is no signpost: the log tool has others, too.
std::optional<Signpost> ReadSignpost(const std::string& line);

}  // namespace krt9ctl::trace
