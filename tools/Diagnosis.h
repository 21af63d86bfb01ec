// Where the driver's search for an element ends, and why.
#pragma once

#include <string>
#include <string_view>

#include "tools/DriverWalk.h"
#include "tools/ExitCode.h"
#include "tools/Listing.h"
#include "tools/Run.h"

namespace krt9ctl {

struct Sought {
    std::string identifier;
    std::string role;  // of a query (accessibility/ElementQuery.h)
};

struct Diagnosis {
    ExitCode code;
    std::string_view outcome;  // in JSON
    std::string sentence;
    Json details = Json::object();
};

// After the walk through the application with this process id. Reads its whole tree when the walk
// itself does not tell. `role` is that of `sought`.
Diagnosis Diagnose(const DriverWalk& walk, const Sought& sought, CFStringRef role, pid_t pid,
                   Context& context);

// The same search in a scene alone.
Diagnosis DiagnoseInScene(const Listing& listing, const Sought& sought, CFStringRef role);

}  // namespace krt9ctl
