#include "Ostrel/PluginApi.h"
#include "OstrelPlugin/Properties.h"

#include <algorithm>
#include <cstdint>
#include <locale>
#include <optional>
#include <sstream>
#include <string>

namespace NAMESPACE_Ostrel {
namespace {

constexpr std::uint32_t DEFAULT_POLL_INTERVAL = 30;

/** The number that the whole text is, if it is one. */
std::optional<std::uint32_t> wholeNumber(const std::string& text)
{
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    std::uint32_t number = 0;
    if (!(stream >> number) || stream.peek() != std::istringstream::traits_type::eof())
        return std::nullopt;
    return number;
}

} // namespace

void IPLUGINAPI_IMPL::LoadSettings()
{
    m_ConfigFile.SetFileName("Ostrel.ini");
    std::uint32_t interval = DEFAULT_POLL_INTERVAL;
    std::string text;
    if (m_ConfigFile.ReadKeyValue(POLL_INTERVAL_KEY, text, -1, -1) == 0)
        interval = wholeNumber(text).value_or(DEFAULT_POLL_INTERVAL);
    m_PollInterval = std::clamp(interval, MINIMUM_POLL_INTERVAL, MAXIMUM_POLL_INTERVAL);
}

} // namespace NAMESPACE_Ostrel
