#include "AdapterRegistry.h"

#include <utility>

namespace PI {
CFreeNumbers::CFreeNumbers(const std::map<AdapterLocation, std::int32_t>& taken)
{
    for (const auto& [location, number] : taken)
        m_Taken.insert(number);
}

std::int32_t CFreeNumbers::Take()
{
    while (m_Taken.contains(m_Next))
        ++m_Next;
    return m_Next++;
}

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
    const auto found = numbers.find(location);
    if (found != numbers.end())
        return found->second;
    return numbers[location] = m_Free.try_emplace(hostName, numbers).first->second.Take();
}

AdapterNumbers CAdapterRegistry::Numbers()
{
    const std::lock_guard guard(m_Lock);
    return m_Numbers;
}

void CAdapterRegistry::Replace(AdapterNumbers numbers)
{
    const std::lock_guard guard(m_Lock);
    m_Numbers = std::move(numbers);
    m_Free.clear();
}

} // namespace PI
