#pragma once

#include "Facts/Drives.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

// Fields of the pages that a drive reports itself. Each is nothing when the page was never read or the field
// is not reported. All ones also mean that it is not known, because a drive that does not answer gives all
// ones.
namespace Host::Cli {

/** A counter of this value is not known. */
inline constexpr std::uint64_t UNKNOWN_COUNTER = std::numeric_limits<std::uint64_t>::max();

/** A number of 16 bytes, low half first. Nothing when it does not fit 64 bits. */
std::optional<std::uint64_t> numberOf(const std::array<std::uint64_t, 2>& field);

std::optional<std::uint64_t> numberOf(std::uint32_t field);

/** A field in kelvin, converted to degrees Celsius. Nothing for 0 kelvin and for all ones. */
std::optional<std::int32_t> celsiusOf(std::uint16_t kelvin);

/** The composite temperature in the health log, in degrees Celsius. */
std::optional<std::int32_t> compositeTemperature(const Drive& drive);

/** The NVMe version, such as "1.4" or "1.2.1". */
std::string nvmeVersion(const Drive& drive);

std::optional<std::uint64_t> namespaceLimit(const Drive& drive);

/** Bytes. Only drives that can create and delete namespaces report it. */
std::optional<std::uint64_t> totalCapacity(const Drive& drive);

/** The total capacity in bytes. Nothing when the drive does not report it. */
std::optional<std::uint64_t> unallocatedCapacity(const Drive& drive);

// A field of the health log, as a getter for the table of facts.

template<auto Field>
std::optional<std::uint64_t> logCounter(const Drive& drive)
{
    return drive.m_HealthLog ? numberOf((*drive.m_HealthLog).*Field) : std::nullopt;
}

template<auto Field, std::size_t Index>
std::optional<std::uint64_t> logElement(const Drive& drive)
{
    return drive.m_HealthLog ? numberOf(((*drive.m_HealthLog).*Field)[Index]) : std::nullopt;
}

/** May exceed 100. A drive counts up to 255. */
template<auto Field>
std::optional<std::int32_t> logPercentage(const Drive& drive)
{
    return drive.m_HealthLog ? std::optional<std::int32_t>((*drive.m_HealthLog).*Field) : std::nullopt;
}

template<std::size_t Index>
std::optional<std::int32_t> sensor(const Drive& drive)
{
    return drive.m_HealthLog ? celsiusOf(drive.m_HealthLog->TemperatureSensor[Index]) : std::nullopt;
}

/** A temperature limit in Identify Controller. */
template<auto Field>
std::optional<std::int32_t> limit(const Drive& drive)
{
    return drive.m_Identify ? celsiusOf((*drive.m_Identify).*Field) : std::nullopt;
}

} // namespace Host::Cli
