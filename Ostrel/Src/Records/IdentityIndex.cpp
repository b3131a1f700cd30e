#include "Records/IdentityIndex.h"

#include "Records/Location.h"

namespace NAMESPACE_Ostrel {

CIdentityIndex::CIdentityIndex(const std::vector<PI::CAdapterID>& identities)
{
    m_Identities.reserve(identities.size());
    for (const PI::CAdapterID& identity : identities) {
        if (identity.m_AdapterNumber == PI::CAdapterID::UNASSIGNED)
            continue;
        m_Identities.try_emplace(pciLocation(identity), &identity); // the first of several stays
    }
}

const PI::CAdapterID* CIdentityIndex::Find(const CNVMeAdapter& adapter) const
{
    const auto found = m_Identities.find(pciLocation(adapter));
    return found == m_Identities.end() ? nullptr : found->second;
}

} // namespace NAMESPACE_Ostrel
