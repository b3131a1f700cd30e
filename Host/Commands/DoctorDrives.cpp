#include "Base/Platform.h"
#include "Commands/DoctorCommand.h"
#include "Drives/DeviceAccess.h"
#include "Facts/Drives.h"
#include "Facts/Measured.h"
#include "Facts/Silence.h"

#include <PI/ErrorCode.h>
#include <TLX/Clock.h>
#include <TLXX/IntelLogs.h>
#include <TLXX/NvmeQuery.h>

#include <algorithm>
#include <map>

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
        return note(state.m_Name, "provides no disk" + where +
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

const PI::CObject* adapterWith(const ObjectStore& store, const TLXX::CControllerState& state)
{
    const auto found =
        std::find_if(store.objects().begin(), store.objects().end(), [&](const PI::CObject& object) {
            return object.m_Type == PI::TYPE_ADAPTER && store.controllerOf(object) == &state;
        });
    return found == store.objects().end() ? nullptr : &*found;
}

Check silent(const TLXX::CControllerState& state, std::uint32_t status)
{
    return problem(ExitCode::RequestFailed, state.m_Name,
                   "does not identify itself: " + TLXX::statusText(status),
                   "Look at the system's log for messages about the drive; reset or replace it.");
}

Check checkMissing(const TLXX::CControllerState& state)
{
    const auto status = TLXX::lastStatus(state.m_DeviceName, TLXX::EQuery::IdentifyController);
    if (!status)
        return note(state.m_Name,
                    "came or went during the inventory, so it was not asked; run the command again");
    if (*status == 0)
        return note(state.m_Name, "is left out on purpose; its product line is not supported");
    return silent(state, *status);
}

/**
 * The plug-in removes the maker's name from the models of these makers. It fails when no text follows the
 * name.
 */
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
        checks.push_back(
            problem(ExitCode::RequestFailed, state.m_Name,
                    "its model is \"" + controller.sModelNumber() +
                        "\", only the maker's name; because of it the plug-in can show no drive at all",
                    "Disable or remove that drive. Then the others are shown."));
}

/** Why a query of `device` gave the plug-in no data, in brackets. */
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
            checks.push_back(note(subject, "its namespace contains no blocks (less than 1 MiB)"));
        return;
    }
    if (TLXX::lastStatus(device, TLXX::EQuery::IdentifyNamespace) == 0U)
        checks.push_back(problem(ExitCode::RequestFailed, subject,
                                 "its namespace's block format is unset or out of range",
                                 "Check its namespace with the maker's tool; it may need to be formatted."));
    else
        checks.push_back(problem(
            ExitCode::RequestFailed, subject,
            "its namespace was not read" + reasonText(device, TLXX::EQuery::IdentifyNamespace), SYSTEM_LOG));
}

void checkHealthLog(const Drive& drive, const std::string& device, Checks& checks)
{
    if (drive.m_HealthLogRead == true) {
        if (!drive.m_Temperature)
            checks.push_back(
                note(std::string(shortDeviceName(device)), "its health log contains no temperature"));
        return;
    }
    const std::string what =
        TLXX::lastStatus(device, TLXX::EQuery::SmartHealthLog) == 0U
            ? "its health log was never filled"
            : "its health log was not read" + reasonText(device, TLXX::EQuery::SmartHealthLog);
    checks.push_back(problem(ExitCode::RequestFailed, std::string(shortDeviceName(device)),
                             what + "; health, temperature and counters are unknown", SYSTEM_LOG));
}

/** A note only, because some models do not have these logs. */
void checkVendorLogs(const ObjectStore& store, const PI::CObject& adapter, const std::string& device,
                     Checks& checks)
{
    for (const std::uint8_t log : unreadVendorLogs(store, adapter))
        checks.push_back(note(std::string(shortDeviceName(device)),
                              log == TLXX::INTEL_LEGACY_SMART_LOG_PAGE
                                  ? "its log CAh was not read, so its wear state is not known"
                                  : "its log C5h was not read, so nothing tells when its temperature comes "
                                    "close to the critical level"));
}

void checkPlace(const ObjectStore& store, const TLXX::CControllerState& state, const PI::CObject& adapter,
                Checks& checks)
{
    const ShownPlace place = shownPlaceOf(store, adapter);
    if (place == ShownPlace::Real)
        return;
    checks.push_back(
        note(state.m_Name,
             "is at " + state.m_Location->Text() + ", but is shown at " + textOf(adapter, PI::PROP_LOCATION) +
                 (place == ShownPlace::WithoutSegment ? ": locations do not contain the PCI segment"
                                                      : ": locations depend on the order of disks, and an "
                                                        "earlier disk was left out")));
}

/** Calls `tell` with each text that more than one of `drives` has, and with the devices that have it. */
template<typename Tell>
void forEachShared(const std::vector<Drive>& drives, std::string Drive::*text, Tell tell)
{
    std::map<std::string, std::vector<std::string>> devices;
    for (const Drive& drive : drives)
        if (!(drive.*text).empty())
            devices[drive.*text].emplace_back(shortDeviceName(drive.m_Device));
    for (const auto& [shared, names] : devices) {
        if (names.size() < 2)
            continue;
        std::string list;
        for (const std::string& name : names)
            list += (list.empty() ? "" : ", ") + name;
        tell(list, shared);
    }
}

void checkShared(const std::vector<Drive>& drives, Checks& checks)
{
    forEachShared(drives, &Drive::m_Location, [&](const std::string& devices, const std::string& location) {
        checks.push_back(
            note(devices, "share the location " + location +
                              ", and therefore an adapter number and a row in the database. Tell "
                              "them apart by device, serial number or PCI address"));
    });
    forEachShared(drives, &Drive::m_Serial, [&](const std::string& devices, const std::string& serial) {
        checks.push_back(
            note(devices, "share the serial number " + serial +
                              ": they are controllers of one drive, or one is a copy. \"watch\" "
                              "repeats their warnings at each poll, and does not notice when one "
                              "of them is removed"));
    });
}

void checkTexts(const Drive& drive, const std::string& device, Checks& checks)
{
    const std::string subject(shortDeviceName(device));
    if (drive.m_Serial.empty())
        checks.push_back(note(subject, "has no serial number; drives are told apart by it"));
    if ((drive.m_Model + drive.m_Serial + drive.m_Firmware).find('?') != std::string::npos)
        checks.push_back(
            note(subject, "its texts contain bytes that cannot be printed; they are shown as '?'"));
}

bool isSilentDisk(const ObjectStore& store, const TLXX::CControllerState& state)
{
    return std::any_of(store.answers().begin(), store.answers().end(), [&](const DriveAnswer& answer) {
        return answer.m_DeviceName == state.m_DeviceName && isSilent(answer);
    });
}

} // namespace

Checks checkControllers(const std::vector<TLXX::CControllerState>& states)
{
    Checks checks;
    for (const TLXX::CControllerState& state : states) {
        checks.push_back(checkController(state));
        if (!state.m_DeviceName.empty() && state.m_Namespaces > 1)
            checks.push_back(note(state.m_Name, "has " + std::to_string(state.m_Namespaces) +
                                                    " namespaces; only the first one is shown, " +
                                                    state.m_DeviceName));
    }
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
        return none("none of them provides a disk that can be shown", "See the lines above.");
    if (fleet != nullptr)
        return none("the fleet file " + fleet->file().string() + " contains no controller",
                    "Add one; DemoFleet.json in the program's share folder is an example.");
    if (anyUnserved)
        return none("the NVMe driver uses none of the controllers, so no drive can be shown",
                    "See the lines above.");
    return none("the system knows no NVMe controller",
                "Connect one, or show a simulated fleet with --simulate.");
}

Checks checkSilent(const std::vector<DriveAnswer>& answers)
{
    Checks checks;
    for (const DriveAnswer& answer : answers)
        if (isSilent(answer))
            checks.push_back(problem(ExitCode::RequestFailed,
                                     std::string(shortDeviceName(answer.m_DeviceName)),
                                     silenceReason(answer, TLX::Misc::now()), SILENCE_REMEDY));
    return checks;
}

Checks checkInventory(const ObjectStore& store)
{
    Checks checks = checkSilent(store.answers());
    bool dropped = false;
    for (const TLXX::CControllerState& state : store.controllers()) {
        if (state.m_DeviceName.empty() || isRefused(state) || isSilentDisk(store, state))
            continue;
        const PI::CObject* adapter = adapterWith(store, state);
        if (adapter == nullptr) {
            checks.push_back(checkMissing(state));
            dropped = true;
        } else
            checkPlace(store, state, *adapter, checks);
    }
    if (dropped)
        checks.push_back(
            note("numbers", "disks were left out, so the disks after them have other numbers and locations"));
    // These checks are about the system's NVMe drives only. Drives of other plug-ins may be something else.
    std::vector<Drive> drives;
    for (const Drive& drive : joinDrives(store)) {
        if (!drive.m_AdapterId)
            continue;
        if (const TLXX::CControllerState* controller = store.controllerOf(*store.byId(*drive.m_AdapterId))) {
            drives.push_back(drive);
            checkNamespace(drive, controller->m_DeviceName, checks);
            checkHealthLog(drive, controller->m_DeviceName, checks);
            checkVendorLogs(store, *store.byId(*drive.m_AdapterId), controller->m_DeviceName, checks);
            checkTexts(drive, controller->m_DeviceName, checks);
        }
    }
    checkShared(drives, checks);
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
