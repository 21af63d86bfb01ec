// What the checks of doctor share, and the checks themselves.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "tools/Client.h"
#include "tools/FrontApplication.h"
#include "tools/Run.h"
#include "tools/doctor/Finding.h"
#include "tools/doctor/Ports.h"

namespace krt9ctl::doctor {

// Looked up once, at the start.
struct Facts {
    PortFacts driverPort, companionPort;
    std::vector<DriverProcess> drivers;
    std::optional<ApplicationFacts> front;
    bool driverReplies = false;  // set by the first check

    // The process that has the driver's port; nothing when it is not known.
    std::optional<DriverProcess> Driver() const;
};

Facts CollectFacts();

// In this order: the first one that fails decides how doctor ends.
Finding CheckDriver(Facts& facts, Client& client);
Finding CheckSecondDriver(const Facts& facts);
Finding CheckVersions(const Facts& facts);
Finding CheckCompanion(const Facts& facts);
Finding CheckFront(const Facts& facts);
Finding CheckPermission(const Facts& facts, Client& client, Context& context);
Finding CheckControls(const Facts& facts, Context& context);
Finding CheckController(const Facts& facts, Context& context);
Finding CheckTranslations();

std::vector<Finding> Examine(Context& context);

// Leaves time, in seconds, to bring another application to the front; ends early when a signal has
// arrived (Interruption.h).
void WaitForTheFront(double seconds, Output& output);

}  // namespace krt9ctl::doctor
