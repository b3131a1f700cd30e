#pragma once

namespace TLX::Threading {

/**
 * The exception that unwinds a thread which `CThread::Cancel` ends. A handler that catches everything must
 * rethrow it.
 */
class CForcedEnd
{};

} // namespace TLX::Threading
