#include "Records/IdentityIndex.h"

namespace NAMESPACE_Ostrel {

CIdentityIndex::CIdentityIndex(const std::vector<PI::CAdapterID>& identities)
{
    m_Identities.reserve(identities.size());
    for (const PI::CAdapterID& identity : identities) {
        if (identity.m_AdapterNumber == PI::CAdapterID::UNASSIGNED)
            continue;
        const CLocation location{identity.m_Segment, identity.m_Bus, identity.m_Device, identity.m_Function};
        m_Identities.try_emplace(location, &identity); // the first of several with one location stays
    }
}

const PI::CAdapterID* CIdentityIndex::Find(const CNVMeAdapter& adapter) const
{
    const CLocation location{
        static_cast<std::uint32_t>(adapter.m_Segment), static_cast<std::uint32_t>(adapter.m_Bus),
        static_cast<std::uint32_t>(adapter.m_Device), static_cast<std::uint32_t>(adapter.m_Function)};
    const auto found = m_Identities.find(location);
    return found == m_Identities.end() ? nullptr : found->second;
}

} // namespace NAMESPACE_Ostrel
