#pragma once

namespace TLXX::Linux {

/**
 * Throws `std::runtime_error` when `error`, of a call that opens something, means that descriptors or memory
 * have run out. In that case the target must not be taken for missing, because nothing is known about it.
 */
void throwIfExhausted(int error);

} // namespace TLXX::Linux
