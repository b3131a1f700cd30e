#include "AdapterRegistry.h"

namespace PI {

CAdapterRegistry& CAdapterRegistry::Instance()
{
    // Never destroyed: a plug-in's worker may still ask while the process ends.
    static CAdapterRegistry& instance = *new CAdapterRegistry;
    return instance;
}

std::int32_t CAdapterRegistry::Number(const std::string& hostName, const AdapterLocation& location)
{
    const std::lock_guard guard(m_Lock);
    auto& numbers = m_Numbers[hostName];
    // No number is ever given back, so the one behind the last is the lowest free one.
    const auto next = static_cast<std::int32_t>(numbers.size()) + 1;
    return numbers.try_emplace(location, next).first->second;
}

} // namespace PI
