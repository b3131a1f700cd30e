#pragma once

#include "Base/Warn.h"

#include <TLXX/Diagnosis.h>

#include <cstddef>
#include <string>
#include <vector>

namespace Host {

/** Whether this user may not open the controller's disk. */
bool isRefused(const TLXX::CControllerState& state);

/** The number of disks that the enumeration finds. */
std::size_t countDisks(const std::vector<TLXX::CControllerState>& states);

/** Whether there is a disk that this user may open. */
bool anyDiskOpens(const std::vector<TLXX::CControllerState>& states);

/**
 * Reports a missing permission at once. A request would find it only after its retries. Throws `Failure` (no
 * permission) when this user may open none of the disks. Warns when the user may open some only.
 */
void checkAccess(const std::vector<TLXX::CControllerState>& states, const Warn& warn);

} // namespace Host
