#pragma once

#include "Facts/Observation.h"
#include "Journal/Entry.h"
#include "Journal/State.h"

#include <vector>

namespace Host::Journal {

/** What a look brings. */
struct Outcome
{
    std::vector<Entry> m_Entries;
    State m_State; ///< to be handed to the next look
};

/**
 * What `now` tells that `before` did not know: each change once. The first look of all adopts the drives that
 * it finds; what they suffer from is told of them as of any drive that is seen first. Drives are the same
 * ones by their keys. What `now` leaves out stays as it was. Depends on its arguments alone.
 */
Outcome advance(const State& before, const Cli::Observation& now);

} // namespace Host::Journal
