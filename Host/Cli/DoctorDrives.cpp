#include "Cli/DoctorCommand.h"
#include "Cli/Drives.h"
#include "Core/DeviceAccess.h"
#include "Core/Platform.h"

#include <TLXX/NvmeQuery.h>

#include <algorithm>
#include <array>
#include <cstdio>

namespace Host::Cli {
namespace {

using Checks = std::vector<Check>;

std::string addressText(const TLXX::CPciLocation& location)
{
    std::array<char, 48> text{};
    (void)std::snprintf(text.data(), text.size(), "%04x:%02x:%02x.%x",
                        static_cast<unsigned>(location.m_Segment), static_cast<unsigned>(location.m_Bus),
                        static_cast<unsigned>(location.m_Device), static_cast<unsigned>(location.m_Function));
    return text.data();
}

Check checkController(const TLXX::CControllerState& state)
{
    const std::string where = state.m_Location ? " at " + addressText(*state.m_Location) : "";
    if (state.m_DeviceName.empty()) {
        if (!state.m_Transport.empty() && state.m_Transport != "pcie")
            return note(state.m_Name,
                        "is attached by " + state.m_Transport + "; only PCI Express drives are shown");
        return note(state.m_Name, "yields no disk" + where +
                                      ": it has no namespace, or is not ready (state: " +
                                      (state.m_State.empty() ? "unknown" : state.m_State) + ")");
    }
    if (isRefused(state))
        return problem(ExitCode::NoPermission, state.m_Name, "no permission to open " + state.m_AccessPath,
                       std::string(Platform::permissionRemedy()));
    if (state.m_AccessStatus != 0)
        return problem(ExitCode::RequestFailed, state.m_Name,
                       state.m_AccessPath + " cannot be opened: " + TLXX::statusText(state.m_AccessStatus),
                       "Look at the system's log for messages about the drive.");
    return ok(state.m_Name, state.m_DeviceName + where + ", driver " + state.m_Driver +
                                (state.m_State.empty() ? "" : ", " + state.m_State));
}

const PI::CObject* adapterOf(const ObjectStore& store, const std::string& device)
{
    const auto found =
        std::find_if(store.objects().begin(), store.objects().end(), [&](const PI::CObject& object) {
            return object.m_Type == PI::TYPE_ADAPTER &&
                   shortDeviceName(textOf(object, PI::PROP_DEVICE_NAME)) == shortDeviceName(device);
        });
    return found == store.objects().end() ? nullptr : &*found;
}

Check checkMissing(const TLXX::CControllerState& state)
{
    const std::uint32_t status = TLXX::lastStatus(state.m_DeviceName);
    if (status == 0)
        return note(state.m_Name, "is left out on purpose; its product line is not supported");
    return problem(ExitCode::RequestFailed, state.m_Name,
                   "does not say what it is: " + TLXX::statusText(status),
                   "Look at the system's log for messages about the drive; reset or replace it.");
}

bool isAt(const PI::CObject& adapter, const TLXX::CPciLocation& location)
{
    const auto equals = [&](std::uint32_t propertyId, std::int32_t expected) {
        const PI::CProperty* property = findProperty(adapter, propertyId);
        const auto* number =
            property != nullptr ? std::get_if<std::uint64_t>(&property->GetValue()) : nullptr;
        return number != nullptr && *number == static_cast<std::uint64_t>(expected);
    };
    return equals(PI::PROP_PCI_BUS, location.m_Bus) && equals(PI::PROP_PCI_DEVICE, location.m_Device) &&
           equals(PI::PROP_PCI_FUNCTION, location.m_Function);
}

void checkAnswers(const Drive& drive, Checks& checks)
{
    const std::string subject(shortDeviceName(drive.m_Device));
    if (drive.m_BlockSize == 0U)
        checks.push_back(
            problem(ExitCode::RequestFailed, subject,
                    "its namespace was not read, or its block format is unset or out of range",
                    "Look at its namespace with the maker's tool; it may have to be formatted."));
    else if (drive.m_CapacityMiB == 0U)
        checks.push_back(note(subject, "its namespace holds no blocks (less than 1 MiB)"));
    if (!drive.m_Temperature) {
        const std::uint32_t status = TLXX::lastStatus(drive.m_Device);
        checks.push_back(problem(ExitCode::RequestFailed, subject,
                                 "its health log was not read" +
                                     (status == 0 ? "" : " (" + TLXX::statusText(status) + ")") +
                                     "; health, temperature and counters are unknown",
                                 "Look at the system's log for messages about the drive."));
    }
    if (drive.m_Serial.empty())
        checks.push_back(note(subject, "has no serial number, by which drives are told apart"));
    if ((drive.m_Model + drive.m_Serial + drive.m_Firmware).find('?') != std::string::npos)
        checks.push_back(note(subject, "its texts hold bytes that cannot be printed, shown as '?'"));
}

} // namespace

Checks checkControllers(const std::vector<TLXX::CControllerState>& states)
{
    if (states.empty())
        return {problem(ExitCode::NoHardware, "controllers", "the system knows no NVMe controller",
                        "Plug one in, or look at a simulated fleet with --simulate.")};
    Checks checks;
    for (const TLXX::CControllerState& state : states)
        checks.push_back(checkController(state));
    if (std::all_of(states.begin(), states.end(),
                    [](const TLXX::CControllerState& state) { return state.m_DeviceName.empty(); }))
        checks.push_back(problem(ExitCode::NoHardware, "controllers",
                                 "none of them yields a disk that could be shown", "See the lines above."));
    return checks;
}

Checks checkInventory(const std::vector<TLXX::CControllerState>& states, const ObjectStore& store)
{
    Checks checks;
    bool dropped = false;
    for (const TLXX::CControllerState& state : states) {
        if (state.m_DeviceName.empty() || isRefused(state))
            continue;
        const PI::CObject* adapter = adapterOf(store, state.m_DeviceName);
        if (adapter == nullptr) {
            checks.push_back(checkMissing(state));
            dropped = true;
        } else if (state.m_Location && !isAt(*adapter, *state.m_Location)) {
            checks.push_back(
                note(state.m_Name, "sits at " + addressText(*state.m_Location) + ", but is shown at " +
                                       textOf(*adapter, PI::PROP_LOCATION) +
                                       ": locations go by number, and a disk before it was left out"));
        }
    }
    if (dropped)
        checks.push_back(
            note("numbers", "disks that were left out shift the numbers and locations of those behind"));
    for (const Drive& drive : joinDrives(store))
        checkAnswers(drive, checks);
    return checks;
}

} // namespace Host::Cli
