#pragma once

#include "Records/Adapter.h"
#include "Records/PhysicalDrive.h"

#include <PI/Event.h>

#include <vector>

namespace NAMESPACE_Ostrel {

/** The changes of a scan to the published state, each list in the order in which they were found. */
struct CChanges
{
    std::vector<PI::CEvent> m_Events;
    std::vector<CNVMeAdapter> m_AddedAdapters;
    std::vector<CNVMeAdapter> m_ChangedAdapters; ///< the records before the change
    std::vector<CNVMeAdapter> m_RemovedAdapters;
    std::vector<CNVMePhysicalDrive> m_AddedDrives; ///< one for each added adapter
    std::vector<CNVMePhysicalDrive>
        m_ChangedDrives; ///< the records before the change, but with the new device index

    // These are not changes of their own: their adapters are also in the lists above.
    std::vector<CNVMeAdapter> m_MovedAdapters; ///< the records before the move, with their old numbers
    bool m_AnyMoved = false;                   ///< an adapter that was there before has another number now

    bool Any() const
    {
        return !(m_AddedAdapters.empty() && m_ChangedAdapters.empty() && m_RemovedAdapters.empty() &&
                 m_ChangedDrives.empty());
    }
};

} // namespace NAMESPACE_Ostrel
