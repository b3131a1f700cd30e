#pragma once

/** Stands between the toolkit and the system functions that make locks and events. */
namespace FailingSystem {

inline constexpr int ALL = -1;

/** How many locks and events are still made before one fails. */
void let(int mutexes, int events);

} // namespace FailingSystem
