// Keys and modifiers by name.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace krt9ctl {

// The names are those of the keys' positions on an ANSI keyboard: a layout may put other characters
// there.
struct KeyRow {
    std::string_view name;  // small letters
    std::uint16_t code;     // virtual key code
};

struct ModifierRow {
    std::string_view name;       // "command"
    std::string_view otherName;  // "cmd"
    std::string_view option;     // "--command"
    unsigned int bit;            // of the modifier word
    std::string_view optionHelp;
};

std::span<const KeyRow> Keys();
std::span<const ModifierRow> Modifiers();

struct KeyChoice {
    std::uint16_t code = 0;      // never 0, which the driver does not post
    unsigned int modifiers = 0;  // the modifier word
    friend bool operator==(const KeyChoice&, const KeyChoice&) = default;
};

// "b", "cmd+b", "shift+cmd+left", "0x31", "cmd+0x31": names in either case. A single digit after a
// modifier could be the key or the code and is refused. The text says what is wrong.
std::variant<KeyChoice, std::string> ParseKey(std::string_view text);

}  // namespace krt9ctl
