#pragma once

#include <TLX/TraceSink.h>

namespace TLX::Trace {

/** Hands `line` to the sink that `setSink` put in place, one line at a time; drops it when there is none.
 * Safe from any thread. */
void write(const CLine& line);

} // namespace TLX::Trace
