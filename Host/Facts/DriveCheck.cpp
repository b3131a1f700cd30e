#include "Facts/DriveCheck.h"

#include "Drives/DeviceAccess.h"
#include "Facts/DriveKey.h"
#include "Facts/Silence.h"

#include <algorithm>
#include <cstddef>

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

/** Appends each disk that the system has and this user may not open. */
void addRefused(const Snapshot& snapshot, std::vector<DriveCheck>& checks)
{
    std::vector<Drive> all;
    for (const TLXX::CControllerState& state : snapshot.m_Objects.controllers()) {
        if (!isRefused(state) || isShown(snapshot.m_Objects, state))
            continue;
        if (all.empty())
            all = snapshot.m_Drives;
        all.push_back(refusedDrive(state));
        checks.push_back({std::make_shared<const Drive>(all.back()),
                          driveKeys(all).back(),
                          {Verdict::Unknown, "no permission to open " + state.m_AccessPath}});
    }
}

std::string nameOf(const DriveCheck& drive)
{
    const std::string device(shortDeviceName(drive.m_Drive->m_Device));
    return device.empty() || device == drive.m_Key ? drive.m_Key : device + " (" + drive.m_Key + ")";
}

std::string countText(std::size_t healthy, std::size_t all)
{
    return (healthy == all ? "" : std::to_string(healthy) + " of ") + std::to_string(all) +
           (all == 1 ? " drive healthy" : " drives healthy");
}

} // namespace

std::vector<DriveCheck> checkDrives(const Snapshot& snapshot, std::uint64_t now,
                                    const std::set<std::string>& missed)
{
    std::vector<DriveCheck> checks;
    checks.reserve(snapshot.m_Drives.size());
    for (std::size_t i = 0; i < snapshot.m_Drives.size(); ++i)
        checks.push_back({snapshot.drive(i), snapshot.m_Keys[i], judge(snapshot.m_Drives[i], now, missed)});
    addRefused(snapshot, checks);
    return checks;
}

Verdict worstOf(const std::vector<DriveCheck>& drives)
{
    const auto worst =
        std::max_element(drives.begin(), drives.end(), [](const DriveCheck& a, const DriveCheck& b) {
            return isWorse(b.m_Judgement.m_Verdict, a.m_Judgement.m_Verdict);
        });
    return worst == drives.end() ? Verdict::Unknown : worst->m_Judgement.m_Verdict;
}

std::string messageOf(const std::vector<DriveCheck>& drives)
{
    std::vector<const DriveCheck*> sorted;
    sorted.reserve(drives.size());
    for (const DriveCheck& each : drives)
        sorted.push_back(&each);
    std::stable_sort(sorted.begin(), sorted.end(), [](const DriveCheck* a, const DriveCheck* b) {
        return isWorse(a->m_Judgement.m_Verdict, b->m_Judgement.m_Verdict);
    });
    std::string text;
    std::size_t healthy = 0;
    for (const DriveCheck* each : sorted) {
        if (each->m_Judgement.m_Verdict == Verdict::Ok)
            ++healthy;
        else
            text += nameOf(*each) + ": " + each->m_Judgement.m_Reason + "; ";
    }
    return text + countText(healthy, drives.size());
}

} // namespace Host::Cli
