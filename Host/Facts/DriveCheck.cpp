#include "Facts/DriveCheck.h"

#include "Drives/DeviceAccess.h"
#include "Facts/DriveKey.h"
#include "Facts/Silence.h"

#include <algorithm>
#include <utility>

namespace Host::Cli {
namespace {

Judgement judge(const Drive& drive, std::uint64_t now, const std::set<std::string>& missed)
{
    const Judgement judgement = Cli::judge(drive, now);
    const bool isBack =
        drive.m_Answer && drive.m_Answer->m_Answering && missed.contains(drive.m_Answer->m_Instance);
    return isBack && isWorse(Verdict::Warning, judgement.m_Verdict)
               ? Judgement{Verdict::Warning, "answered only when it was asked again"}
               : judgement;
}

bool isShown(const ObjectStore& store, const TLXX::CControllerState& state)
{
    return std::any_of(store.objects().begin(), store.objects().end(), [&](const PI::CObject& object) {
        return object.m_Type == PI::TYPE_ADAPTER && store.controllerOf(object) == &state;
    });
}

Drive refusedDrive(const TLXX::CControllerState& state)
{
    Drive drive;
    drive.m_Device = state.m_DeviceName;
    drive.m_PciAddress = state.m_Location ? state.m_Location->Text() : "";
    drive.m_System = state;
    return drive;
}

} // namespace

std::vector<DriveCheck> checkDrives(const ObjectStore& store, std::uint64_t now,
                                    const std::set<std::string>& missed)
{
    std::vector<Drive> drives = joinDrives(store);
    std::vector<Judgement> judgements;
    judgements.reserve(drives.size());
    for (const Drive& drive : drives)
        judgements.push_back(judge(drive, now, missed));
    for (const TLXX::CControllerState& state : store.controllers())
        if (isRefused(state) && !isShown(store, state)) {
            drives.push_back(refusedDrive(state));
            judgements.push_back({Verdict::Unknown, "no permission to open " + state.m_AccessPath});
        }
    std::vector<std::string> keys = driveKeys(drives);
    std::vector<DriveCheck> checks;
    for (std::size_t i = 0; i < drives.size(); ++i)
        checks.push_back({std::move(drives[i]), std::move(keys[i]), std::move(judgements[i])});
    return checks;
}

} // namespace Host::Cli
