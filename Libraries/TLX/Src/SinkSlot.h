#pragma once

#include <TLX/TraceSink.h>

namespace TLX::Trace {

/** Hands `line` to the process's sink, one line at a time; drops it when there is none. */
void write(const CLine& line);

} // namespace TLX::Trace
