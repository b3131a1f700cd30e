#include "Journal/Counter.h"

#include <cstddef>

namespace Host::Journal {
namespace {

using Cli::ObservedDrive;

constexpr CounterRow COUNTERS[] = {
    {Counter::PowerCycles, "power-cycles", "power cycles", &ObservedDrive::m_PowerCycles},
    {Counter::UnsafeShutdowns, "unsafe-shutdowns", "unsafe shutdowns", &ObservedDrive::m_UnsafeShutdowns},
    {Counter::PowerOnHours, "power-on-hours", "power-on hours", &ObservedDrive::m_PowerOnHours},
    {Counter::DataUnitsWritten, "data-units-written", "data units written",
     &ObservedDrive::m_DataUnitsWritten},
    {Counter::MediaErrors, "media-errors", "media errors", &ObservedDrive::m_MediaErrors},
};

} // namespace

std::span<const CounterRow> counterRows()
{
    return COUNTERS;
}

const CounterRow& rowOf(Counter counter)
{
    return counterRows()[static_cast<std::size_t>(counter)];
}

} // namespace Host::Journal
