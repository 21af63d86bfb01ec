// The values given to one verb, checked and converted as its parameters require.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "tools/Bytes.h"
#include "tools/Grammar.h"
#include "tools/Keys.h"

namespace krt9ctl {

// What is wrong with a command line, in one line without the program's name.
class UsageError : public std::runtime_error {
  public:
    // `command` is the verb, or the first word of its group, whose help says more; empty for none.
    explicit UsageError(const std::string& sentence, std::string_view command = {})
        : std::runtime_error(sentence), command_(command) {}

    const std::string& Command() const { return command_; }

  private:
    std::string command_;
};

// Whole-number global display coordinates, origin at the top left of the main display.
struct Coordinates {
    std::int64_t x = 0, y = 0;
    friend bool operator==(const Coordinates&, const Coordinates&) = default;
};

// The texts given, by parameter name; a flag that was given has one empty text.
using GivenTexts = std::map<std::string_view, std::vector<std::string>>;

class Arguments {
  public:
    // Throws UsageError for a value that its parameter does not accept.
    Arguments(const Verb& verb, const GivenTexts& given);

    // Every name must be one of the verb's parameters, asked for by its own kind.
    bool Has(std::string_view name) const { return values_.contains(name); }
    std::int64_t Number(std::string_view name) const;
    std::int64_t NumberOr(std::string_view name, std::int64_t otherwise) const;
    double SecondsOr(std::string_view name, double otherwise) const;
    Coordinates Point(std::string_view name) const;
    const std::string& Text(std::string_view name) const;
    std::vector<std::string> Texts(std::string_view name) const;
    MessageCode Code(std::string_view name) const;
    Bytes HexOrNone(std::string_view name) const;
    KeyChoice Key(std::string_view name) const;

  private:
    using Value = std::variant<bool, std::int64_t, double, Coordinates, std::string, MessageCode,
                               Bytes, KeyChoice>;

    static Value Convert(const Parameter& parameter, const std::string& text);
    const Value& First(std::string_view name) const { return values_.at(name).front(); }

    std::map<std::string_view, std::vector<Value>> values_;
};

// The number of a control, given as 59 or as its identifier _NS:59. Nothing for any other text.
std::optional<std::int64_t> ParseElement(std::string_view text);

// A time in seconds: more than 0 and at most 86400. Throws UsageError, naming `name`.
double ParseSeconds(std::string_view name, const std::string& text);

}  // namespace krt9ctl
