#include "Records/Health.h"

#include "Records/Lifetime.h"

#include <PI/StateCode.h>
#include <TLXX/IntelLogs.h>

namespace NAMESPACE_Ostrel {
namespace {

constexpr std::uint8_t MEDIA_READ_ONLY = 1U << 3U;

struct CWarning
{
    std::uint8_t m_Bit;
    PI::_STATE_CODE m_Status;
    PI::_STATE_CODE m_Reason;
};

// The last bit in this order that is set decides the status.
constexpr CWarning HEALTH_WARNINGS[] = {
    {1U << 1U, PI::HEALTH_DEGRADED, PI::REASON_TEMPERATURE},
    {1U << 0U, PI::HEALTH_DEGRADED, PI::REASON_SPARE_LOW},
    {1U << 4U, PI::HEALTH_CRITICAL, PI::REASON_MEMORY_BACKUP_FAILED},
    {1U << 2U, PI::HEALTH_CRITICAL, PI::REASON_RELIABILITY_DEGRADED},
    {MEDIA_READ_ONLY, PI::HEALTH_CRITICAL, PI::REASON_READ_ONLY},
};

/** Drives of one product line count their wear upwards. */
bool reportsWearInverted(const std::string& model)
{
    return model.starts_with("INTEL SSDPED1K") && model.ends_with("GA");
}

} // namespace

std::uint32_t temperatureWarnings(const TLXX::VendorLogPage& statistics)
{
    switch (TLXX::temperatureMargin(statistics)) {
    case TLXX::ETemperatureMargin::Safe:
        return 0;
    case TLXX::ETemperatureMargin::NearCritical:
        return 0x20;
    case TLXX::ETemperatureMargin::Critical:
        return 0x200U | 0x40U;
    case TLXX::ETemperatureMargin::AboveCritical:
        return 0x200U | 0x80U;
    }
    return 0;
}

void applyCriticalWarning(CNVMeAdapter& adapter, std::uint8_t criticalWarning)
{
    if (adapter.m_WarningFlags == 0)
        adapter.m_HealthStatus = PI::HEALTH_HEALTHY;
    for (const CWarning& warning : HEALTH_WARNINGS) {
        if ((criticalWarning & warning.m_Bit) == 0)
            continue;
        adapter.m_HealthStatus = warning.m_Status;
        adapter.m_HealthReasons.push_back(warning.m_Reason);
    }
}

void applyWear(CNVMeAdapter& adapter, std::uint32_t adNormalized, std::uint32_t eaNormalized,
               std::uint8_t criticalWarning)
{
    adapter.m_ADNormalized = reportsWearInverted(adapter.m_Model) ? percentLeft(adNormalized) : adNormalized;
    adapter.m_EANormalized = eaNormalized;
    if (eaNormalized < 100 && adapter.m_HealthStatus != PI::HEALTH_CRITICAL)
        adapter.m_HealthStatus = PI::HEALTH_DEGRADED;
    if (eaNormalized == 100)
        adapter.m_SpareStatus = PI::WEAR_OK;
    else if (eaNormalized < 100 && (criticalWarning & MEDIA_READ_ONLY) == 0)
        adapter.m_SpareStatus = PI::WEAR_WARNING;
    else
        adapter.m_SpareStatus = PI::WEAR_CRITICAL;
}

} // namespace NAMESPACE_Ostrel
