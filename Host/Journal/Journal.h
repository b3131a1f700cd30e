#pragma once

#include "Facts/Observation.h"
#include "Journal/Entry.h"
#include "Journal/State.h"

#include <vector>

namespace Host::Journal {

/** The result of a look. */
struct Outcome
{
    std::vector<Entry> m_Entries;
    State m_State; ///< must be passed to the next look
};

/**
 * Returns each change from `before` to `now` once. The very first look adopts all drives that it finds. It
 * still tells what is wrong with them, as for any drive that is seen for the first time. Drives are matched
 * by their keys. A value that is missing in `now` keeps its last state. The result depends on the arguments
 * only.
 */
Outcome advance(const State& before, const Cli::Observation& now);

} // namespace Host::Journal
