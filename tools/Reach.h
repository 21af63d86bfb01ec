// Which elements a request of the companion can name, by the rules of the driver's search.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <string>
#include <string_view>
#include <vector>

#include "accessibility/ElementQuery.h"
#include "tools/ElementList.h"

namespace krt9ctl {

enum class Reach {
    nameless,     // it has no identifier
    reached,      // the search for its identifier ends with it
    window,       // windows are only searched, and never found
    inside,       // below an element whose children the search leaves out
    role,         // its role is not one of those sought
    searchField,  // a text field that is a search field
    otherName,    // requests name "_NS:" and a number only
    shadowed,     // the search ends with an earlier element of the same identifier
};

struct Judgement {
    Reach reach = Reach::nameless;
    std::size_t cause = 0;  // with `inside` the element that ends the descent, with `shadowed` the
                            // earlier one: indexes in the list
};

// One for each element. The role is that of a query (ElementQuery.h).
std::vector<Judgement> JudgeReach(const ElementList& list,
                                  CFStringRef role = kVEK_AXRole_AllValidRoles);

// In JSON, as "reach".
std::string_view ReachName(Reach reach);

// Why it is not reached, in a few words: "inside AXTable". Empty for the first two.
std::string ReasonOf(const Judgement& judgement, const ElementList& list);

}  // namespace krt9ctl
