#include "Records/PhysicalDrive.h"

#include <PI/EventCode.h>
#include <TLX/Clock.h>

namespace NAMESPACE_Ostrel {

void CNVMePhysicalDrive::Update(const CNVMePhysicalDrive& fresh, const CNVMeAdapter& adapter,
                                std::vector<PI::CEvent>& events)
{
    if (m_BlockSize == fresh.m_BlockSize && m_ReservedMiB == fresh.m_ReservedMiB) {
        ++m_UpdateCount;
        return;
    }
    PI::CEvent event;
    event.m_Source = m_ID;
    event.m_Id = PI::EVENT_DRIVE_CHANGED;
    event.m_Severity = PI::EVENT_SEVERITY_INFORMATION;
    event.m_Time = TLX::Misc::now();
    event.SetSource(m_ProductName);
    event.SetPlaceHolder1(adapter.m_Name);
    event.SetPlaceHolder2(m_ProductName);
    events.push_back(event);
}

} // namespace NAMESPACE_Ostrel
