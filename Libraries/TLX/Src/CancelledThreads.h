#pragma once

#include <functional>

namespace TLX::Threading {

/** Remembers a thread that is about to be cancelled; `runs` tells whether it still runs, at any later time.
 */
void rememberCancelled(std::function<bool()> runs);

} // namespace TLX::Threading
