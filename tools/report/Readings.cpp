#include "tools/report/Readings.h"

#include "VEKCommon/MessageCodes.h"
#include "tools/Arguments.h"
#include "tools/ElementList.h"
#include "tools/Reach.h"
#include "tools/RequestBody.h"
#include "tools/report/Redaction.h"

namespace krt9ctl {

namespace {

bool HoldsNumberText(const ListedElement& element) {
    return element.role == "AXTextField" && element.value && element.value->is_string() &&
           IsNumberText(element.value->get<std::string>());
}

}  // namespace

Plan Readings(const AccessibilityTree& tree) {
    const ElementList list = ListElements(tree);
    const auto judgements = JudgeReach(list);
    Plan plan;
    std::size_t controls = 0;
    for (std::size_t place = 1; place < list.size() && controls < kMostControlsRead; ++place) {
        const ListedElement& element = list[place];
        const auto number = element.identifier ? ParseElement(*element.identifier) : std::nullopt;
        if (judgements[place].reach != Reach::reached || !number) {
            continue;
        }
        ++controls;
        const Bytes body = OneNumberBody(*number);
        plan.push_back({kJElV, body});
        plan.push_back({kJElP, body});
        if (element.role == "AXRadioGroup") {
            plan.push_back({kJGRV, body});
        } else if (HoldsNumberText(element)) {
            plan.push_back({kJESI, body});
        }
    }
    return plan;
}

}  // namespace krt9ctl
