// The system's own desktop takes no script.
#include "tools/Grammar.h"

namespace krt9ctl {

std::vector<Verb> DesktopVerbs() {
    return {};
}

}  // namespace krt9ctl
