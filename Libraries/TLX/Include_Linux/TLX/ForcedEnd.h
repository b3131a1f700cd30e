#pragma once

#include <cxxabi.h>

namespace TLX::Threading {

/** What unwinds a thread that `CThread::Cancel` ends. Who catches everything on the way has to pass it on. */
using CForcedEnd = abi::__forced_unwind;

} // namespace TLX::Threading
