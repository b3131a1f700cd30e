#include "Drives/DeviceAccess.h"

#include "Base/Failure.h"
#include "Base/Platform.h"

#include <TLXX/NvmeQuery.h>

#include <algorithm>

namespace Host {

bool isRefused(const TLXX::CControllerState& state)
{
    return !state.m_DeviceName.empty() && TLXX::isPermissionStatus(state.m_AccessStatus);
}

std::size_t countDisks(const std::vector<TLXX::CControllerState>& states)
{
    return static_cast<std::size_t>(
        std::count_if(states.begin(), states.end(),
                      [](const TLXX::CControllerState& state) { return !state.m_DeviceName.empty(); }));
}

bool anyDiskOpens(const std::vector<TLXX::CControllerState>& states)
{
    return std::any_of(states.begin(), states.end(), [](const TLXX::CControllerState& state) {
        return !state.m_DeviceName.empty() && !isRefused(state);
    });
}

void checkAccess(const std::vector<TLXX::CControllerState>& states, const Warn& warn)
{
    std::string refused;
    for (const TLXX::CControllerState& state : states)
        if (isRefused(state))
            refused += (refused.empty() ? "" : ", ") + state.m_AccessPath;
    if (refused.empty())
        return;
    const std::string message =
        "No permission to open " + refused + ". " + std::string(Platform::permissionRemedy());
    if (!anyDiskOpens(states))
        throw Failure(ExitCode::NoPermission, message);
    warn(message);
}

} // namespace Host
