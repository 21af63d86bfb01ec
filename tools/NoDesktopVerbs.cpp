// The system's own desktop cannot be scripted.
#include "tools/Grammar.h"

namespace krt9ctl {

std::vector<Verb> DesktopVerbs() {
    return {};
}

}  // namespace krt9ctl
