#include "Records/Adapter.h"
#include "Records/EventCodes.h"
#include "Records/Trace.h"

#include <TLX/Clock.h>

namespace NAMESPACE_Ostrel {
namespace {

struct CWarningRow
{
    std::uint32_t m_Bit;
    EventCode m_Event;
    EventSeverity m_Severity;
};

/** The warnings that make an event when they come up, in the order of their events. */
constexpr CWarningRow WARNINGS[] = {
    {0x10, EVENT_MEMORY_BACKUP_FAILED, SEVERITY_ERROR},
    {0x04, EVENT_RELIABILITY_DEGRADED, SEVERITY_WARNING},
    {0x40, EVENT_TEMPERATURE_CRITICAL, SEVERITY_ERROR},
    {0x80, EVENT_TEMPERATURE_ABOVE_CRITICAL, SEVERITY_ERROR},
    {0x20, EVENT_TEMPERATURE_NEAR_CRITICAL, SEVERITY_WARNING},
    {0x200, EVENT_TEMPERATURE_HIGH, SEVERITY_WARNING},
    {0x01, EVENT_SPARE_LOW, SEVERITY_ERROR},
};

} // namespace

void CNVMeAdapter::Update(const CNVMeAdapter& fresh, std::vector<PI::CEvent>& events) const
{
    PI::CEvent event;
    event.m_Source = m_ID;
    event.m_Time = TLX::Misc::now();
    event.SetSource(m_Name);
    event.SetPlaceHolder1(m_Name);
    const auto append = [&](EventCode id, EventSeverity severity) {
        event.m_Id = id;
        event.m_Severity = severity;
        events.push_back(event);
    };

    OSTREL_TRACE(TRACE_FLOW) << "Update () %x -> %x" << m_WarningFlags << fresh.m_WarningFlags;
    const std::uint32_t raised = fresh.m_WarningFlags & ~m_WarningFlags;
    for (const CWarningRow& row : WARNINGS)
        if ((raised & row.m_Bit) != 0)
            append(row.m_Event, row.m_Severity);
    if (m_WarningFlags != 0 && fresh.m_WarningFlags == 0)
        append(EVENT_WARNINGS_CLEARED, SEVERITY_INFORMATION);
}

} // namespace NAMESPACE_Ostrel
