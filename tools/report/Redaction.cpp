#include "tools/report/Redaction.h"

#include <algorithm>
#include <array>
#include <variant>

#include "companion/KRT9Companion.h"

namespace krt9ctl {

namespace {

using scene_notation::Value;

constexpr std::array<std::string_view, 3> kStructure = {"AXRole", "AXSubrole", "AXIdentifier"};

// The driver finds the playhead by it.
constexpr std::string_view kDescriptionSought = "Playhead";

constexpr std::string_view kLetters = "xyzabcdefghijklmnopqrstuvw";

// The length of the character that begins with this byte.
std::size_t LengthAt(unsigned char first) {
    if (first < 0x80) {
        return 1;
    }
    if (first < 0xE0) {
        return 2;
    }
    return first < 0xF0 ? 3 : 4;
}

// One character of the same length that the system encoding holds, or does not, alike.
std::string_view Likeness(const std::string& character) {
    const bool isInEncoding = krt9::ToSystemEncoding(character).has_value();
    switch (character.size()) {
        case 1:
            return kLetters.substr(0, 1);
        case 2:
            return isInEncoding ? "é" : "ж";
        case 3:
            return isInEncoding ? "…" : "口";
        default:
            return "𝄞";
    }
}

// The text with each character replaced by its likeness.
std::string FormOf(const std::string& text) {
    std::string form;
    for (std::size_t at = 0; at < text.size();) {
        const std::string character =
            text.substr(at, LengthAt(static_cast<unsigned char>(text[at])));
        form += Likeness(character);
        at += character.size();
    }
    return form;
}

// The form with a number in its letters, the last one first; nothing when it has too few.
std::optional<std::string> Numbered(std::string form, std::size_t number) {
    for (std::size_t at = form.size(); at-- > 0 && number > 0;) {
        if (form[at] == kLetters.front()) {
            form[at] = kLetters[number % kLetters.size()];
            number /= kLetters.size();
        }
    }
    return number == 0 ? std::optional(form) : std::nullopt;
}

constexpr std::string_view kDigits = "0123456789";

// Removes so many of these characters at most; how many there were.
std::size_t TakeAny(std::string_view& text, std::string_view characters, std::size_t most) {
    const std::size_t count = std::min({text.find_first_not_of(characters), text.size(), most});
    text.remove_prefix(count);
    return count;
}

}  // namespace

bool IsNumberText(std::string_view text) {
    constexpr std::size_t kMostDigits = 10;
    constexpr std::size_t kMostDecimals = 6;
    TakeAny(text, " ", text.size());
    TakeAny(text, "+-", 1);
    if (TakeAny(text, kDigits, kMostDigits) == 0) {
        return false;
    }
    if (TakeAny(text, ".,", 1) == 1 && TakeAny(text, kDigits, kMostDecimals) == 0) {
        return false;
    }
    TakeAny(text, " ", text.size());
    return text.empty();
}

std::string Redactor::Replaced(const std::string& text) {
    const auto known = replaced_.find(text);
    if (known != replaced_.end()) {
        return known->second;
    }
    const std::string form = FormOf(text);
    std::size_t& number = next_[form];
    const auto numbered = Numbered(form, number);
    number += numbered ? 1 : 0;
    return replaced_[text] = numbered ? *numbered : form;
}

void Redactor::Redact(std::string_view role, const std::string& attribute,
                      scene_notation::Answer& answer) {
    if (std::find(kStructure.begin(), kStructure.end(), attribute) != kStructure.end()) {
        return;
    }
    if (const auto* text = std::get_if<std::string>(&answer.value.content)) {
        const bool isNumber =
            attribute == "AXValue" && role == "AXTextField" && IsNumberText(*text);
        const bool isSought = attribute == "AXDescription" && *text == kDescriptionSought;
        if (isNumber || isSought) {
            return;
        }
    }
    Redact(answer.value);
}

// Values nest to a limited depth.
void Redactor::Redact(Value& value) {
    if (auto* text = std::get_if<std::string>(&value.content)) {
        *text = Replaced(*text);
    } else if (auto* bytes = std::get_if<desktop_link::Bytes>(&value.content)) {
        std::fill(bytes->content.begin(), bytes->content.end(), std::uint8_t{0});
    } else if (auto* array = std::get_if<desktop_link::Array>(&value.content)) {
        for (Value& item : *array) {
            Redact(item);
        }
    } else if (auto* dictionary = std::get_if<desktop_link::Dictionary>(&value.content)) {
        for (auto& [key, entry] : *dictionary) {
            key = Replaced(key);
            Redact(entry);
        }
    }
}

}  // namespace krt9ctl
