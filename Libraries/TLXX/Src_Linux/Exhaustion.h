#pragma once

namespace TLXX::Linux {

/**
 * Throws `std::runtime_error` when `error`, of a call that was to open something, says that descriptors or
 * memory have run out. Nothing was learnt then of what was to be opened; it must not pass for missing.
 */
void throwIfExhausted(int error);

} // namespace TLXX::Linux
