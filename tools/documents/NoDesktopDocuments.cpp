#include "tools/documents/DesktopDocuments.h"

namespace documents {

std::vector<const terminal::Program*> SimulatedPrograms() {
    return {};
}

}  // namespace documents
