#pragma once

#include <cxxabi.h>

namespace TLX::Threading {

/**
 * The exception that unwinds a thread which `CThread::Cancel` ends. A handler that catches everything must
 * rethrow it.
 */
using CForcedEnd = abi::__forced_unwind;

} // namespace TLX::Threading
