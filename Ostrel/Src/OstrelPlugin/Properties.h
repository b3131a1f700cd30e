#pragma once

#include <PI/PollInterval.h>

namespace NAMESPACE_Ostrel {

using PI::MAXIMUM_POLL_INTERVAL;
using PI::MINIMUM_POLL_INTERVAL;
using PI::POLL_INTERVAL_KEY;

} // namespace NAMESPACE_Ostrel
