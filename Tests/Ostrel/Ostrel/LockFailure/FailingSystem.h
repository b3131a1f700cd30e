#pragma once

/** Replaces the system functions that make locks and events. */
namespace FailingSystem {

inline constexpr int ALL = -1;

/** How many more locks and events are made before one fails. */
void let(int mutexes, int events);

} // namespace FailingSystem
