// One parameter of a command line as data. The parser, the help, the manual pages and the
// completions read the same rows.
#pragma once

#include <cstdint>
#include <string_view>

namespace terminal {

enum class ValueKind {
    flag,         // an option without a value
    number,       // decimal or 0x hex, within the parameter's limits
    seconds,      // more than 0, at most 86400, fractions allowed
    coordinates,  // X,Y: two whole numbers, global display coordinates
    text,         // UTF-8 without a zero byte
    code,         // four printable ASCII characters
    hex,          // pairs of hex digits
    element,      // 59 or _NS:59
    key,          // a key's name or code, with modifiers before it: cmd+b
    file,         // a path
};

enum class Presence { required, optional, repeated };  // repeated: once or more

inline constexpr std::int64_t kLargestUnsigned32 = 0xFFFFFFFF;
inline constexpr std::int64_t kSmallestSigned32 = -0x80000000LL;
inline constexpr std::int64_t kLargestSigned32 = 0x7FFFFFFF;

struct Parameter {
    std::string_view name;  // "ELEMENT" is positional, "--steps" an option
    ValueKind kind = ValueKind::text;
    std::string_view help;
    Presence presence = Presence::required;  // of a positional one; options are optional
    std::string_view placeholder = {};       // of an option's value, in the help
    std::int64_t smallest = 0;               // of a number, or of each coordinate
    std::int64_t largest = kLargestUnsigned32;
};

}  // namespace terminal
