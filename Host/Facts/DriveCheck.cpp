#include "Facts/DriveCheck.h"

#include "Drives/DeviceAccess.h"
#include "Facts/DriveKey.h"

#include <TLXX/NvmeQuery.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace Host::Cli {
namespace {

bool isShown(const ObjectStore& store, const TLXX::CControllerState& state)
{
    return std::any_of(store.objects().begin(), store.objects().end(), [&](const PI::CObject& object) {
        return object.m_Type == PI::TYPE_ADAPTER && store.controllerOf(object) == &state;
    });
}

/** What to think of a disk that is not shown; nothing when that is as it should be. */
std::optional<Judgement> judgeMissing(const TLXX::CControllerState& state)
{
    if (state.m_DeviceName.empty())
        return std::nullopt;
    if (isRefused(state))
        return Judgement{Verdict::Unknown, "no permission to open " + state.m_AccessPath};
    const auto status = TLXX::lastStatus(state.m_DeviceName, TLXX::EQuery::IdentifyController);
    // One that came meanwhile was not asked yet, and one that answered is left out on purpose.
    if (status.value_or(0) == 0)
        return std::nullopt;
    return Judgement{Verdict::Critical, "does not answer: " + TLXX::statusText(*status)};
}

} // namespace

std::vector<DriveCheck> checkDrives(const ObjectStore& store)
{
    std::vector<Drive> drives = joinDrives(store);
    std::vector<Judgement> judgements;
    std::transform(drives.begin(), drives.end(), std::back_inserter(judgements), judge);
    for (const TLXX::CControllerState& state : store.controllers()) {
        auto judgement = isShown(store, state) ? std::nullopt : judgeMissing(state);
        if (!judgement)
            continue;
        Drive drive;
        drive.m_Device = state.m_DeviceName;
        drive.m_PciAddress = state.m_Location ? state.m_Location->Text() : "";
        drive.m_System = state;
        drives.push_back(std::move(drive));
        judgements.push_back(*std::move(judgement));
    }
    std::vector<std::string> keys = driveKeys(drives);
    std::vector<DriveCheck> checks;
    for (std::size_t i = 0; i < drives.size(); ++i)
        checks.push_back({std::move(drives[i]), std::move(keys[i]), std::move(judgements[i])});
    return checks;
}

} // namespace Host::Cli
