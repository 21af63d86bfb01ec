// Collects what a report holds. Nothing is changed: the driver is asked to read, the application is
// read.
#pragma once

#include <string>
#include <vector>

#include "tools/Run.h"
#include "tools/report/Archive.h"

namespace krt9ctl {

// One member of the archive, and what people are told of it.
struct ReportPart {
    ArchiveMember member;
    std::string summary;
};

struct Report {
    std::vector<ReportPart> parts;  // those that there are, member::kReport first
    bool editorIsInFront = false;
};

// Traces the driver for `seconds` at least. What cannot be collected is left out, with the reason
// in member::kReport. Throws std::runtime_error when the session is refused.
Report CollectReport(double seconds, Context& context);

}  // namespace krt9ctl
