#include "OstrelPlugin/PollInterval.h"

#include <string>

namespace NAMESPACE_Ostrel {

std::uint32_t readPollInterval(PI::CConfigFile& settings)
{
    std::string text;
    return settings.ReadKeyValue(PI::POLL_INTERVAL_KEY, text, -1, -1) == 0 ? PI::pollIntervalOf(text)
                                                                           : PI::DEFAULT_POLL_INTERVAL;
}

std::uint32_t writePollInterval(PI::CConfigFile& settings, std::uint32_t interval)
{
    const auto number = static_cast<std::int32_t>(interval);
    return settings.WriteKeyValue(PI::POLL_INTERVAL_KEY, std::to_string(number), -1, -1);
}

void showPollInterval(std::uint32_t interval, PI::CProperty& property)
{
    property.SetValue(static_cast<std::int32_t>(interval), PI::MINIMUM_POLL_INTERVAL,
                      PI::MAXIMUM_POLL_INTERVAL, 1);
}

std::optional<std::uint32_t> requestedPollInterval(const PI::CProperty& property)
{
    std::int32_t value = 0;
    std::int32_t minimum = 0;
    std::int32_t maximum = 0;
    std::int32_t step = 0;
    if (!property.GetValue(value, minimum, maximum, step))
        return std::nullopt;
    if (value < minimum)
        value = minimum;
    if (value > maximum)
        value = maximum;
    return static_cast<std::uint32_t>(value);
}

} // namespace NAMESPACE_Ostrel
