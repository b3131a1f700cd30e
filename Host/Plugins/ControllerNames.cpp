#include "Plugins/ControllerNames.h"

#include "Base/Text.h"
#include "Plugins/ObjectStore.h"

#include <algorithm>
#include <string_view>

namespace Host {
namespace {

/** A fleet file only names disks. This returns the "nvme0" of "nvme0n1". */
std::string_view withoutNamespace(std::string_view name)
{
    const std::size_t end = name.find_last_not_of("0123456789");
    const bool isDisk = end != std::string_view::npos && end > 0 && end + 1 < name.size() &&
                        name[end] == 'n' &&
                        std::string_view("0123456789").find(name[end - 1]) != std::string_view::npos;
    return isDisk ? name.substr(0, end) : name;
}

} // namespace

std::string diskOfController(const std::vector<TLXX::CControllerState>& states, const std::string& name)
{
    const auto found = std::find_if(states.begin(), states.end(), [&](const TLXX::CControllerState& state) {
        return !state.m_DeviceName.empty() &&
               equalIgnoringCase(withoutNamespace(shortDeviceName(state.m_Name)), shortDeviceName(name));
    });
    return found == states.end() ? name : found->m_DeviceName;
}

} // namespace Host
