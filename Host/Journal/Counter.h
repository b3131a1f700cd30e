#pragma once

#include "Facts/Observation.h"

#include <cstdint>
#include <optional>
#include <span>

namespace Host::Journal {

/** Something that a drive counts during its whole life. */
enum class Counter : std::uint8_t
{
    PowerCycles,
    UnsafeShutdowns,
    PowerOnHours,
    DataUnitsWritten,
    MediaErrors,
};

struct CounterRow
{
    Counter m_Counter;
    const char* m_Word; ///< in stores
    const char* m_Text; ///< in sentences
    std::optional<std::uint64_t> Cli::ObservedDrive::*m_Figure;
};

/** One row for each counter, in the order of their numbers. */
std::span<const CounterRow> counterRows();

const CounterRow& rowOf(Counter counter);

} // namespace Host::Journal
