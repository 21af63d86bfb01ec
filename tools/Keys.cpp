#include "tools/Keys.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

#include "tools/Numbers.h"
#include "tools/Text.h"
#include "tools/terminal/Help.h"

namespace krt9ctl {

namespace {

constexpr std::int64_t kLargestKeyCode = 0xFFFF;

constexpr ModifierRow kModifiers[] = {
    {"command", "cmd", "--command", 0x0100, "with the Command key"},
    {"shift", "shift", "--shift", 0x0200, "with the Shift key"},
    {"option", "opt", "--option", 0x0800, "with the Option key"},
    {"control", "ctrl", "--control", 0x1000, "with the Control key"},
};

constexpr KeyRow kKeys[] = {
    {"a", 0x00},
    {"b", 0x0B},
    {"c", 0x08},
    {"d", 0x02},
    {"e", 0x0E},
    {"f", 0x03},
    {"g", 0x05},
    {"h", 0x04},
    {"i", 0x22},
    {"j", 0x26},
    {"k", 0x28},
    {"l", 0x25},
    {"m", 0x2E},
    {"n", 0x2D},
    {"o", 0x1F},
    {"p", 0x23},
    {"q", 0x0C},
    {"r", 0x0F},
    {"s", 0x01},
    {"t", 0x11},
    {"u", 0x20},
    {"v", 0x09},
    {"w", 0x0D},
    {"x", 0x07},
    {"y", 0x10},
    {"z", 0x06},
    {"digit0", 0x1D},
    {"digit1", 0x12},
    {"digit2", 0x13},
    {"digit3", 0x14},
    {"digit4", 0x15},
    {"digit5", 0x17},
    {"digit6", 0x16},
    {"digit7", 0x1A},
    {"digit8", 0x1C},
    {"digit9", 0x19},
    {"-", 0x1B},
    {"=", 0x18},
    {"[", 0x21},
    {"]", 0x1E},
    {";", 0x29},
    {"'", 0x27},
    {",", 0x2B},
    {".", 0x2F},
    {"/", 0x2C},
    {"\\", 0x2A},
    {"`", 0x32},
    {"space", 0x31},
    {"return", 0x24},
    {"tab", 0x30},
    {"escape", 0x35},
    {"delete", 0x33},
    {"forward-delete", 0x75},
    {"left", 0x7B},
    {"right", 0x7C},
    {"up", 0x7E},
    {"down", 0x7D},
    {"home", 0x73},
    {"end", 0x77},
    {"page-up", 0x74},
    {"page-down", 0x79},
    {"help", 0x72},
    {"f1", 0x7A},
    {"f2", 0x78},
    {"f3", 0x63},
    {"f4", 0x76},
    {"f5", 0x60},
    {"f6", 0x61},
    {"f7", 0x62},
    {"f8", 0x64},
    {"f9", 0x65},
    {"f10", 0x6D},
    {"f11", 0x67},
    {"f12", 0x6F},
    {"f13", 0x69},
    {"f14", 0x6B},
    {"f15", 0x71},
    {"f16", 0x6A},
    {"f17", 0x40},
    {"f18", 0x4F},
    {"f19", 0x50},
    {"f20", 0x5A},
    {"keypad0", 0x52},
    {"keypad1", 0x53},
    {"keypad2", 0x54},
    {"keypad3", 0x55},
    {"keypad4", 0x56},
    {"keypad5", 0x57},
    {"keypad6", 0x58},
    {"keypad7", 0x59},
    {"keypad8", 0x5B},
    {"keypad9", 0x5C},
    {"keypad-decimal", 0x41},
    {"keypad-multiply", 0x43},
    {"keypad-plus", 0x45},
    {"keypad-clear", 0x47},
    {"keypad-divide", 0x4B},
    {"keypad-enter", 0x4C},
    {"keypad-minus", 0x4E},
    {"keypad-equals", 0x51},
};

std::string InSmallLetters(std::string_view text) {
    std::string small(text);
    std::transform(small.begin(), small.end(), small.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                    : character;
    });
    return small;
}

const ModifierRow* FindModifier(std::string_view name) {
    const std::string small = InSmallLetters(name);
    const auto* row = std::find_if(
        std::begin(kModifiers), std::end(kModifiers),
        [&](const ModifierRow& each) { return small == each.name || small == each.otherName; });
    return row == std::end(kModifiers) ? nullptr : row;
}

// What other keyboards and programs call a key.
constexpr std::pair<std::string_view, std::string_view> kNamesElsewhere[] = {
    {"backspace", "delete"}, {"del", "forward-delete"}, {"enter", "return"},
    {"esc", "escape"},       {"pgdn", "page-down"},     {"pgup", "page-up"},
};

// The key that was probably meant; empty for none.
std::string NearestKey(const std::string& small) {
    std::vector<std::string> names;
    for (const KeyRow& row : kKeys) {
        names.emplace_back(row.name);
    }
    for (const auto& [elsewhere, here] : kNamesElsewhere) {
        if (small == elsewhere) {
            return std::string(here);
        }
    }
    return terminal::Nearest(small, names);
}

std::string UnknownKey(std::string_view name) {
    if (FindModifier(name) != nullptr) {
        return fmt::format("'{0}' is a modifier: a key follows it, as in {0}+b", Printable(name));
    }
    const std::string nearest = NearestKey(InSmallLetters(name));
    return fmt::format("there is no key '{}'; {}he verb keys lists them", Printable(name),
                       nearest.empty() ? "t" : fmt::format("did you mean '{}'? T", nearest));
}

std::variant<KeyChoice, std::string> ParseLoneKey(std::string_view name, bool isCombined) {
    std::int64_t code = -1;
    if (const auto number = ParseUnsigned(name)) {
        if (isCombined && name.size() == 1) {
            return fmt::format("'{0}' could be the key or the key code: type digit{0} or 0x{0}",
                               name);
        }
        code = *number;
    } else {
        const std::string small = InSmallLetters(name);
        const auto* row = std::find_if(std::begin(kKeys), std::end(kKeys),
                                       [&](const KeyRow& each) { return each.name == small; });
        if (row == std::end(kKeys)) {
            return UnknownKey(name);
        }
        code = row->code;
    }
    if (code == 0) {
        return fmt::format("'{}' is key code 0, which the driver never posts", Printable(name));
    }
    if (code > kLargestKeyCode) {
        return fmt::format("'{}' is not a key code from 1 to {}", Printable(name), kLargestKeyCode);
    }
    return KeyChoice{static_cast<std::uint16_t>(code), 0};
}

}  // namespace

std::span<const KeyRow> Keys() {
    return kKeys;
}

std::span<const ModifierRow> Modifiers() {
    return kModifiers;
}

std::variant<KeyChoice, std::string> ParseKey(std::string_view text) {
    unsigned int modifiers = 0;
    std::string_view rest = text;
    for (std::size_t plus = rest.find('+'); plus != std::string_view::npos; plus = rest.find('+')) {
        const std::string_view name = rest.substr(0, plus);
        const ModifierRow* modifier = FindModifier(name);
        if (modifier == nullptr) {
            return fmt::format("'{}' is not a modifier: cmd, shift, opt or ctrl", Printable(name));
        }
        modifiers |= modifier->bit;
        rest.remove_prefix(plus + 1);
    }
    auto key = ParseLoneKey(rest, modifiers != 0);
    if (auto* choice = std::get_if<KeyChoice>(&key)) {
        choice->modifiers = modifiers;
    }
    return key;
}

}  // namespace krt9ctl
