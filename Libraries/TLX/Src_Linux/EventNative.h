#pragma once

#include "Descriptor.h"

#include <TLX/Event.h>

#include <atomic>

namespace TLX::Threading {

/** The event's descriptor: readable while the event is signalled. Apart, so that one poll can watch several.
 */
struct CEvent::Native
{
    Native() noexcept;

    void Signal();

    /** Takes the signal away. Returns false when there was none. */
    bool Clear();

    /** Whether a wait that saw the descriptor readable ends here; false when another one took the signal. */
    bool Accept() { return m_ManualReset || Clear(); }

    CDescriptor m_Descriptor;
    std::atomic<bool> m_ManualReset = false;
};

} // namespace TLX::Threading
