#include "Base/Platform.h"
#include "Commands/DoctorCommand.h"
#include "Drives/DeviceAccess.h"
#include "Facts/Drives.h"
#include "Plugins/AdapterIdentities.h"

#include <PI/ErrorCode.h>
#include <TLXX/NvmeQuery.h>

#include <algorithm>

namespace Host::Cli {
namespace {

using Checks = std::vector<Check>;

constexpr char SYSTEM_LOG[] = "Look at the system's log for messages about the drive.";

Check checkController(const TLXX::CControllerState& state)
{
    const std::string where = state.m_Location ? " at " + state.m_Location->Text() : "";
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
                       SYSTEM_LOG);
    return ok(state.m_Name, state.m_DeviceName + where + ", driver " + state.m_Driver +
                                (state.m_State.empty() ? "" : ", " + state.m_State));
}

/** The path by which the drive was asked; plug-ins may show it shortened. */
std::string askedPath(const std::vector<TLXX::CControllerState>& states, const std::string& shown)
{
    const auto found = std::find_if(states.begin(), states.end(), [&](const TLXX::CControllerState& state) {
        return shortDeviceName(state.m_DeviceName) == shortDeviceName(shown);
    });
    return found == states.end() ? shown : found->m_DeviceName;
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

Check silent(const TLXX::CControllerState& state, std::uint32_t status)
{
    return problem(ExitCode::RequestFailed, state.m_Name,
                   "does not say what it is: " + TLXX::statusText(status),
                   "Look at the system's log for messages about the drive; reset or replace it.");
}

Check checkMissing(const TLXX::CControllerState& state)
{
    const auto status = TLXX::lastStatus(state.m_DeviceName, TLXX::EQuery::IdentifyController);
    if (!status)
        return note(state.m_Name,
                    "came or went while the inventory was taken, and was not asked; look once more");
    if (*status == 0)
        return note(state.m_Name, "is left out on purpose; its product line is not supported");
    return silent(state, *status);
}

/** The plug-in cuts the maker's name off these makers' models, and fails where nothing stands behind it. */
bool isMakerAlone(const TLXX::NVME_IDENTIFY_CONTROLLER& controller)
{
    constexpr std::uint16_t intel = 0x8086;
    constexpr std::uint16_t samsung = 0x144D;
    const std::string model = controller.sModelNumber();
    return (controller.VID == intel && model == "INTEL") || (controller.VID == samsung && model == "SAMSUNG");
}

void checkIdentity(const TLXX::CControllerState& state, Checks& checks)
{
    TLXX::NVME_IDENTIFY_CONTROLLER controller{};
    if (const auto status = TLXX::NVMeStorageQueryPropertyIdentifyController(state.m_DeviceName, controller))
        checks.push_back(silent(state, status));
    else if (isMakerAlone(controller))
        checks.push_back(problem(ExitCode::RequestFailed, state.m_Name,
                                 "its model is \"" + controller.sModelNumber() +
                                     "\", the maker's name alone; the plug-in cannot show it, nor any other",
                                 "Disable or remove that drive; the others are then shown."));
}

/** What a query of `device` that left the plug-in without its data ended with, in brackets. */
std::string reasonText(const std::string& device, TLXX::EQuery query)
{
    const std::uint32_t status = TLXX::lastStatus(device, query).value_or(0);
    return status == 0 ? "" : " (" + TLXX::statusText(status) + ")";
}

void checkNamespace(const Drive& drive, const std::string& device, Checks& checks)
{
    const std::string subject(shortDeviceName(device));
    if (drive.m_BlockSize != 0U) {
        if (drive.m_CapacityMiB == 0U)
            checks.push_back(note(subject, "its namespace holds no blocks (less than 1 MiB)"));
        return;
    }
    if (TLXX::lastStatus(device, TLXX::EQuery::IdentifyNamespace) == 0U)
        checks.push_back(
            problem(ExitCode::RequestFailed, subject, "its namespace's block format is unset or out of range",
                    "Look at its namespace with the maker's tool; it may have to be formatted."));
    else
        checks.push_back(problem(
            ExitCode::RequestFailed, subject,
            "its namespace was not read" + reasonText(device, TLXX::EQuery::IdentifyNamespace), SYSTEM_LOG));
}

void checkHealthLog(const Drive& drive, const std::string& device, Checks& checks)
{
    if (drive.m_Temperature)
        return;
    const std::string what =
        TLXX::lastStatus(device, TLXX::EQuery::SmartHealthLog) == 0U
            ? "its health log was never filled, for it holds no temperature"
            : "its health log was not read" + reasonText(device, TLXX::EQuery::SmartHealthLog);
    checks.push_back(problem(ExitCode::RequestFailed, std::string(shortDeviceName(device)),
                             what + "; health, temperature and counters are unknown", SYSTEM_LOG));
}

void checkTexts(const Drive& drive, const std::string& device, Checks& checks)
{
    const std::string subject(shortDeviceName(device));
    if (drive.m_Serial.empty())
        checks.push_back(note(subject, "has no serial number, by which drives are told apart"));
    if ((drive.m_Model + drive.m_Serial + drive.m_Firmware).find('?') != std::string::npos)
        checks.push_back(note(subject, "its texts hold bytes that cannot be printed, shown as '?'"));
}

} // namespace

Checks checkControllers(const std::vector<TLXX::CControllerState>& states)
{
    Checks checks;
    for (const TLXX::CControllerState& state : states)
        checks.push_back(checkController(state));
    return checks;
}

Checks checkAnyDisk(const std::vector<TLXX::CControllerState>& states, bool anyUnserved,
                    const SimulatedFleet* fleet)
{
    if (countDisks(states) > 0)
        return {};
    const auto none = [](const std::string& message, const std::string& remedy) {
        return Checks{problem(ExitCode::NoHardware, "controllers", message, remedy)};
    };
    if (!states.empty())
        return none("none of them yields a disk that could be shown", "See the lines above.");
    if (fleet != nullptr)
        return none("the fleet file " + fleet->file().string() + " holds no controller",
                    "Describe one in it; DemoFleet.json in the program's share folder is an example.");
    if (anyUnserved)
        return none("there is a controller, but none that the NVMe driver serves, so no drive can be shown",
                    "See the lines above.");
    return none("the system knows no NVMe controller",
                "Plug one in, or look at a simulated fleet with --simulate.");
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
        } else if (state.m_Location && pciLocation(*adapter) != state.m_Location) {
            checks.push_back(
                note(state.m_Name, "sits at " + state.m_Location->Text() + ", but is shown at " +
                                       textOf(*adapter, PI::PROP_LOCATION) +
                                       ": locations go by number, and a disk before it was left out"));
        }
    }
    if (dropped)
        checks.push_back(
            note("numbers", "disks that were left out shift the numbers and locations of those behind"));
    for (const Drive& drive : joinDrives(store)) {
        const std::string device = askedPath(states, drive.m_Device);
        checkNamespace(drive, device, checks);
        checkHealthLog(drive, device, checks);
        checkTexts(drive, device, checks);
    }
    return checks;
}

Checks checkRefusal(const std::vector<TLXX::CControllerState>& states, const RequestResult& result)
{
    Checks checks;
    for (const TLXX::CControllerState& state : states) {
        if (state.m_DeviceName.empty() || isRefused(state))
            continue;
        if (result.m_Code == PI::ERR_NO_SUPPORTED_HARDWARE)
            checks.push_back(checkMissing(state));
        else
            checkIdentity(state, checks);
    }
    return checks;
}

} // namespace Host::Cli
