// One element as a line for people and as an object for programs.
#pragma once

#include <string>

#include "tools/ElementList.h"
#include "tools/Reach.h"

namespace krt9ctl {

struct LineStyle {
    bool inColour = false;
    bool asTree = false;  // indented by its depth; otherwise its address stands before it
};

// "+ AXCheckBox _NS:159 "Index" (description) = 1": "+" before what requests can name, "-" before
// what has an identifier and they cannot, with the reason in brackets. Texts are shortened, and
// nothing in them reaches the terminal as a control character.
std::string ElementLine(const ElementList& list, std::size_t place, const Judgement& judgement,
                        const LineStyle& style);

// The first 40 characters, without anything that a terminal would obey.
std::string ShortText(const std::string& text);

Json ElementObject(const ElementList& list, std::size_t place, const Judgement& judgement);

}  // namespace krt9ctl
