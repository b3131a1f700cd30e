#pragma once

namespace TLX::Threading {

/** What unwinds a thread that `CThread::Cancel` ends. Who catches everything on the way has to pass it on. */
class CForcedEnd
{};

} // namespace TLX::Threading
