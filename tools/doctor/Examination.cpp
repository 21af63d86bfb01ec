#include "tools/doctor/Examination.h"

#include <algorithm>
#include <filesystem>

#include "VEKCommon/Names.h"
#include "tools/Session.h"

namespace krt9ctl::doctor {

std::optional<DriverProcess> Facts::Driver() const {
    const auto driver =
        std::find_if(drivers.begin(), drivers.end(), [this](const DriverProcess& each) {
            return driverPort.owner ? each.pid == *driverPort.owner : drivers.size() == 1;
        });
    return driver == drivers.end() ? std::nullopt : std::optional(*driver);
}

Facts CollectFacts() {
    CheckSession();
    Facts facts;
    facts.driverPort = LookAtPort(kDriverPortName);
    facts.companionPort = LookAtPort(kCompanionPortName);
    facts.drivers = DriverProcesses();
    facts.front = FrontApplication();
    return facts;
}

// A bundle's program lies in Contents/MacOS.
std::string BundleOfProgram(const std::string& path) {
    const auto folder = std::filesystem::path(path).parent_path();
    const bool isBundle =
        folder.filename() == "MacOS" && folder.parent_path().filename() == "Contents";
    return isBundle ? folder.parent_path().parent_path().string() : std::string();
}

std::vector<Finding> Examine(Context& context) {
    Facts facts = CollectFacts();
    Client client(context.timeout);
    std::vector<Finding> findings;
    findings.push_back(CheckDriver(facts, client));
    findings.push_back(CheckSecondDriver(facts));
    findings.push_back(CheckVersions(facts));
    findings.push_back(CheckCompanion(facts));
    findings.push_back(CheckFront(facts));
    findings.push_back(CheckPermission(facts, client, context));
    findings.push_back(CheckControls(facts, context));
    findings.push_back(CheckController(facts, context));
    findings.push_back(CheckTranslations());
    return findings;
}

}  // namespace krt9ctl::doctor
