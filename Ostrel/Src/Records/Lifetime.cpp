#include "Records/Lifetime.h"

#include <PI/PluginHelper.h>
#include <TLX/Clock.h>
#include <TLXX/SystemTime.h>

#include <array>
#include <cstdio>

namespace NAMESPACE_Ostrel {

std::uint64_t lifetimeRating(const std::vector<PI::CNVMeLifeTimeData>& table, std::string_view model)
{
    constexpr std::uint64_t UNRATED = 1;
    const PI::CNVMeLifeTimeData* family = PI::findLifeTimeData(table, model);
    return family == nullptr ? UNRATED : family->m_Endurance;
}

std::string endOfLifeDate(const CNVMeAdapter& adapter)
{
    constexpr std::uint64_t MILLISECONDS_PER_HOUR = 3'600'000;
    if (adapter.m_PowerOnHours == UNKNOWN_COUNTER)
        return {};
    std::uint64_t hours = 0;
    (void)PI::CPluginHelper::ComputeRemainingLifeTime(
        adapter.m_PowerOnHours, bytesOfDataUnits(adapter.m_DataUnitsWritten),
        percentLeft(adapter.m_ADNormalized), adapter.m_LifetimeRating, hours);
    std::int32_t year = 0;
    std::int32_t month = 0;
    std::int32_t day = 0;
    TLXX::CSystemTime_Win::GetDate(TLX::Misc::now() + hours * MILLISECONDS_PER_HOUR, year, month, day);
    std::array<char, 40> text{};
    (void)std::snprintf(text.data(), text.size(), "%4d-%02d-%02d", year, month, day);
    return text.data();
}

} // namespace NAMESPACE_Ostrel
