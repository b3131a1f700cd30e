#pragma once

#include "Base/Moment.h"
#include "Journal/Entry.h"
#include "Journal/State.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace Host::Journal {

/**
 * Takes `state` to the moment `now`. Appends to `entries` when the machine restarted since its last moment,
 * or when its clock was set. After the clock was set, the times in `state` are as if it had always been so.
 * Returns the former moment's time, also on the clock as it is now.
 */
std::optional<std::uint64_t> pass(State& state, const Moment& now, std::vector<Entry>& entries);

/**
 * Lets no interval of `entries` end before it begins. After a restart the clock may show an earlier time than
 * at the last look.
 */
void orderTimes(std::vector<Entry>& entries);

} // namespace Host::Journal
