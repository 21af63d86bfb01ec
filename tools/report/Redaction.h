// Leaves the texts of an application's users out of a dump, so that it can be passed on.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

#include "scenes/notation/Answer.h"
#include "tools/AccessibilityTree.h"

namespace krt9ctl {

// What stays: roles, subroles and identifiers; numbers, switches, positions, sizes, frames, ranges
// and errors; a text field's value that is a number; a description that the driver looks for. The
// value of any other attribute has its texts replaced, also those in arrays and dictionaries and
// their keys, and its data by zeros.
//
// A text is replaced by one of letters without meaning that has as many characters, bytes of UTF-8
// and units of UTF-16, and that the system encoding can hold if it can hold the text itself. Equal
// texts stay equal, and different ones different while there are enough letters for it: texts of
// one or two letters may become equal.
class Redactor {
  public:
    // Of an element with this role.
    void Redact(std::string_view role, const std::string& attribute,
                scene_notation::Answer& answer);

    // For a text in UTF-8.
    std::string Replaced(const std::string& text);

  private:
    void Redact(scene_notation::Value& value);

    std::map<std::string, std::string> replaced_;
    std::map<std::string, std::size_t> next_;  // by the form of the text
};

// True for the value that a text field shows for a number: blanks, a sign, digits, a fraction.
bool IsNumberText(std::string_view text);

}  // namespace krt9ctl
