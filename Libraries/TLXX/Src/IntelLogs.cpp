#include <TLXX/IntelLogs.h>

namespace TLXX {

ETemperatureMargin temperatureMargin(const VendorLogPage& statistics)
{
    const int difference = statistics[0] - statistics[104];
    if (difference < 78)
        return ETemperatureMargin::Safe;
    if (difference < 80)
        return ETemperatureMargin::NearCritical;
    return difference < 84 ? ETemperatureMargin::Critical : ETemperatureMargin::AboveCritical;
}

} // namespace TLXX
