#include "tools/documents/DesktopDocuments.h"

#include "desktop/Program.h"

namespace documents {

std::vector<const terminal::Program*> SimulatedPrograms() {
    return {&desktop::DesktopProgram()};
}

}  // namespace documents
