#include "Records/Adapter.h"
#include "Records/Trace.h"

#include <PI/EventCode.h>
#include <TLX/Clock.h>

namespace NAMESPACE_Ostrel {
namespace {

struct CWarningRow
{
    std::uint32_t m_Bit;
    PI::_EVENT_CODE m_Event;
    PI::_EVENT_SEVERITY m_Severity;
};

/** The warnings that make an event when they appear, in the order of their events. */
constexpr CWarningRow WARNINGS[] = {
    {0x10, PI::EVENT_MEMORY_BACKUP_FAILED, PI::EVENT_SEVERITY_ERROR},
    {0x04, PI::EVENT_RELIABILITY_DEGRADED, PI::EVENT_SEVERITY_WARNING},
    {0x40, PI::EVENT_TEMPERATURE_CRITICAL, PI::EVENT_SEVERITY_ERROR},
    {0x80, PI::EVENT_TEMPERATURE_ABOVE_CRITICAL, PI::EVENT_SEVERITY_ERROR},
    {0x20, PI::EVENT_TEMPERATURE_NEAR_CRITICAL, PI::EVENT_SEVERITY_WARNING},
    {0x200, PI::EVENT_TEMPERATURE_HIGH, PI::EVENT_SEVERITY_WARNING},
    {0x01, PI::EVENT_SPARE_LOW, PI::EVENT_SEVERITY_ERROR},
};

} // namespace

void CNVMeAdapter::Update(const CNVMeAdapter& fresh, std::vector<PI::CEvent>& events) const
{
    PI::CEvent event;
    event.m_Source = m_ID;
    event.m_Time = TLX::Misc::now();
    event.SetSource(m_Name);
    event.SetPlaceHolder1(m_Name);
    const auto append = [&](PI::_EVENT_CODE id, PI::_EVENT_SEVERITY severity) {
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
        append(PI::EVENT_WARNINGS_CLEARED, PI::EVENT_SEVERITY_INFORMATION);
}

} // namespace NAMESPACE_Ostrel
