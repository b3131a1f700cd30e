#include "AdapterRegistry.h"

#include <set>
#include <utility>

namespace PI {
namespace {

std::int32_t lowestFree(const std::map<AdapterLocation, std::int32_t>& numbers)
{
    std::set<std::int32_t> taken;
    for (const auto& [location, number] : numbers)
        taken.insert(number);
    std::int32_t number = 1;
    while (taken.contains(number))
        ++number;
    return number;
}

} // namespace

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
    return found != numbers.end() ? found->second : numbers[location] = lowestFree(numbers);
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
}

} // namespace PI
