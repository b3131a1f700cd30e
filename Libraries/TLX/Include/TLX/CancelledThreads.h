#pragma once

#include <TLX/Export.h>

#include <cstdint>

namespace TLX::Threading {

/**
 * Whether a thread still runs that was cancelled in this process (`CThread::Cancel`). Its code must stay
 * loaded, and what it uses must stay alive. Safe from any thread.
 */
TLX_EXPORT bool cancelledThreadRuns();

/** How many threads were cancelled in this process up to now, ended or not. Safe from any thread. */
TLX_EXPORT std::uint64_t countCancelledThreads();

} // namespace TLX::Threading
