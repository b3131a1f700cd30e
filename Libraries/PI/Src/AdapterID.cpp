#include "AdapterRegistry.h"

#include <PI/AdapterID.h>

#include <utility>

namespace PI {

CGlobalAdapterID::CGlobalAdapterID(std::string hostName) : m_HostName(std::move(hostName)) {}

void CGlobalAdapterID::GenerateUniqueAdapterNumber()
{
    m_Number = CAdapterRegistry::Instance().Number(m_HostName, {m_Segment, m_Bus, m_Device, m_Function});
}

} // namespace PI
