#include "Platform.h"

#include <TLXX/ConfigManager.h>
#include <TLXX/DeviceBackend.h>

namespace TLXX {

bool CConfigManager::GetLocation(const std::vector<std::string>& /*known*/, std::uint32_t number,
                                 std::int32_t& segment, std::int32_t& bus, std::int32_t& device,
                                 std::int32_t& function)
{
    const auto backend = deviceBackend();
    const auto location = backend ? backend->Location(number) : Platform::location(number);
    if (!location)
        return false;
    segment = location->m_Segment;
    bus = location->m_Bus;
    device = location->m_Device;
    function = location->m_Function;
    return true;
}

} // namespace TLXX
