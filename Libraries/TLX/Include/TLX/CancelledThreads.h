#pragma once

#include <TLX/Export.h>

namespace TLX::Threading {

/**
 * Whether a thread still runs that was cancelled in this process (`CThread::Cancel`). Its code must stay
 * loaded, and what it uses must stay alive. Safe from any thread.
 */
TLX_EXPORT bool cancelledThreadRuns();

} // namespace TLX::Threading
