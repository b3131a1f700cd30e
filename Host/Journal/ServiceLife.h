#pragma once

#include "Base/Moment.h"
#include "Journal/Journal.h"

namespace Host::Journal {

/** The news that the service started, since it was last known to run. `before` is the state that it finds. */
Outcome serviceStarted(const State& before, const Moment& now);

/** The news that the service ends. */
Outcome serviceEnded(const State& before, const Moment& now);

} // namespace Host::Journal
