#pragma once

#include "Facts/Drives.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

// Fields of a drive's own pages. Each is nothing when the page was never read, or when the field says that
// the drive does not report it. All ones say that, too: a drive that does not answer reads so.
namespace Host::Cli {

/** What stands for a counter that is not known. */
inline constexpr std::uint64_t UNKNOWN_COUNTER = std::numeric_limits<std::uint64_t>::max();

/** Of 16 bytes, low half first. A number that does not fit 64 bits is none. */
std::optional<std::uint64_t> numberOf(const std::array<std::uint64_t, 2>& field);

std::optional<std::uint64_t> numberOf(std::uint32_t field);

/** Degrees Celsius of a field in kelvin; 0 kelvin is no temperature. */
std::optional<std::int32_t> celsiusOf(std::uint16_t kelvin);

/** The composite temperature of the health log in degrees Celsius. */
std::optional<std::int32_t> compositeTemperature(const Drive& drive);

/** Such as "1.4", or "1.2.1". */
std::string nvmeVersion(const Drive& drive);

std::optional<std::uint64_t> namespaceLimit(const Drive& drive);

/** Bytes; reported by drives whose namespaces can be made and removed. */
std::optional<std::uint64_t> totalCapacity(const Drive& drive);

/** Bytes of the total capacity; nothing where that is not reported. */
std::optional<std::uint64_t> unallocatedCapacity(const Drive& drive);

// A field of the health log, as getters of the table of facts.

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

/** May pass 100; a drive counts no further than 255. */
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

/** A limit of the temperature in Identify Controller. */
template<auto Field>
std::optional<std::int32_t> limit(const Drive& drive)
{
    return drive.m_Identify ? celsiusOf((*drive.m_Identify).*Field) : std::nullopt;
}

} // namespace Host::Cli
