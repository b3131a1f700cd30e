#pragma once

#include <functional>

namespace TLX::Threading {

/** Remembers a thread that is about to be cancelled. `runs` tells at any later time whether it still runs. */
void rememberCancelled(std::function<bool()> runs);

} // namespace TLX::Threading
