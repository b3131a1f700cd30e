#pragma once

#include <TLX/Export.h>

namespace TLX::Threading {

/**
 * Whether a thread that somebody in this process has cancelled (`CThread::Cancel`) still runs. The code of
 * such a thread must stay loaded, and what it uses must stay alive. Safe from any thread.
 */
TLX_EXPORT bool cancelledThreadRuns();

} // namespace TLX::Threading
