#include "Commands/DoctorCommand.h"
#include "Drives/DeviceAccess.h"

#include <PI/PropertyId.h>
#include <TLXX/System.h>

#include <algorithm>
#include <set>

namespace Host::Cli {
namespace {

using Checks = std::vector<Check>;

Check checkRelease(const Platform::System& system)
{
    if (system.m_Supported)
        return ok("system", system.m_Name);
    return problem(ExitCode::RequestFailed, "system",
                   system.m_Name + " lacks functions that are needed to find and query drives",
                   std::string(Platform::systemRemedy()));
}

Check checkDriver(bool isThere, const std::vector<TLXX::CControllerState>& states)
{
    std::set<std::string> drivers;
    for (const TLXX::CControllerState& state : states)
        if (!state.m_Driver.empty())
            drivers.insert(state.m_Driver);
    const std::string usual(Platform::driverName());
    if (drivers.empty() && !isThere)
        return problem(ExitCode::NoHardware, "driver",
                       "the system's NVMe driver, " + usual + ", is not loaded",
                       std::string(Platform::driverRemedy()));
    if (drivers.empty())
        drivers.insert(usual);
    std::string text;
    for (const std::string& driver : drivers) {
        const std::string version = TLXX::CSystem::GetModuleVersion(driver);
        text += (text.empty() ? "" : ", ") + driver + (version.empty() ? "" : " " + version);
    }
    return ok("driver", text);
}

/** Nothing when a drive refuses this user, because that is reported in a line of its own. */
Checks checkPermissions(const std::vector<TLXX::CControllerState>& states)
{
    const std::size_t disks = countDisks(states);
    if (disks == 0 || std::any_of(states.begin(), states.end(), isRefused))
        return {};
    return {ok("permissions", "this user may open every drive, " + std::to_string(disks) + " in all")};
}

} // namespace

Checks checkSystem(const Platform::System& system, bool driverIsThere,
                   const std::vector<TLXX::CControllerState>& states)
{
    Checks checks = {checkRelease(system), checkDriver(driverIsThere, states)};
    const Checks permissions = checkPermissions(states);
    checks.insert(checks.end(), permissions.begin(), permissions.end());
    return checks;
}

Check checkAnnouncements(bool available)
{
    if (available)
        return ok("announcements", "the system tells at once when drives come or go");
    return note("announcements",
                "the system does not tell this program when drives come or go; watch finds them at its next "
                "poll");
}

Checks checkUnserved(const std::vector<Platform::UnservedFunction>& functions)
{
    Checks checks;
    for (const Platform::UnservedFunction& function : functions)
        if (Platform::isPassThrough(function.m_Driver))
            checks.push_back(note(function.m_Address,
                                  "an NVMe controller that was given to a virtual machine or to another "
                                  "program; it has the driver " +
                                      function.m_Driver + ". Its drive can be seen only there. " +
                                      std::string(Platform::passThroughRemedy())));
        else
            checks.push_back(
                problem(ExitCode::NoHardware, function.m_Address,
                        "an NVMe controller that the NVMe driver does not use; it has " +
                            (function.m_Driver.empty() ? "no driver" : "the driver " + function.m_Driver),
                        std::string(Platform::driverRemedy())));
    return checks;
}

Checks checkVersions(const ObjectStore& store)
{
    Checks checks;
    for (const PI::CObject& object : store.objects()) {
        const std::string version = textOf(object, PI::PROP_VERSION);
        if (object.m_Type != PI::TYPE_PLUGIN || version.empty())
            continue;
        const std::string name = textOf(object, PI::PROP_NAME) + " " + version;
        checks.push_back(version == OSTREL_VERSION
                             ? ok("version", name + ", the same as this program")
                             : note("version", name + ", but this program is " OSTREL_VERSION));
    }
    return checks;
}

} // namespace Host::Cli
