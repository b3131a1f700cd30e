#include "Facts/PageFields.h"

namespace Host::Cli {
namespace {

template<typename Number>
constexpr Number ALL_ONES = std::numeric_limits<Number>::max();

} // namespace

std::optional<std::uint64_t> numberOf(const std::array<std::uint64_t, 2>& field)
{
    const auto [low, high] = field;
    return high == 0 && low != ALL_ONES<std::uint64_t> ? std::optional(low) : std::nullopt;
}

std::optional<std::uint64_t> numberOf(std::uint32_t field)
{
    return field != ALL_ONES<std::uint32_t> ? std::optional<std::uint64_t>(field) : std::nullopt;
}

std::optional<std::int32_t> celsiusOf(std::uint16_t kelvin)
{
    constexpr std::int32_t zeroCelsius = 273;
    return kelvin != 0 && kelvin != ALL_ONES<std::uint16_t> ? std::optional(kelvin - zeroCelsius)
                                                            : std::nullopt;
}

std::optional<std::int32_t> compositeTemperature(const Drive& drive)
{
    return drive.m_HealthLog ? celsiusOf(drive.m_HealthLog->CompositeTemperature()) : std::nullopt;
}

std::string nvmeVersion(const Drive& drive)
{
    constexpr std::uint32_t byte = 0xFF;
    const std::uint32_t version = drive.m_Identify ? drive.m_Identify->VER : 0;
    if (version == 0 || version == ALL_ONES<std::uint32_t>)
        return {};
    const std::uint32_t tertiary = version & byte;
    return std::to_string(version >> 16U) + "." + std::to_string((version >> 8U) & byte) +
           (tertiary != 0 ? "." + std::to_string(tertiary) : "");
}

std::optional<std::uint64_t> namespaceLimit(const Drive& drive)
{
    const auto number = drive.m_Identify ? numberOf(drive.m_Identify->NN) : std::nullopt;
    return number != 0U ? number : std::nullopt;
}

std::optional<std::uint64_t> totalCapacity(const Drive& drive)
{
    const auto number = drive.m_Identify ? numberOf(drive.m_Identify->TNVMCAP) : std::nullopt;
    return number != 0U ? number : std::nullopt;
}

std::optional<std::uint64_t> unallocatedCapacity(const Drive& drive)
{
    return totalCapacity(drive) ? numberOf(drive.m_Identify->UNVMCAP) : std::nullopt;
}

} // namespace Host::Cli
