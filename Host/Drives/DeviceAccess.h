#pragma once

#include "Base/Warn.h"

#include <TLXX/Diagnosis.h>

#include <cstddef>
#include <string>
#include <vector>

namespace Host {

/** Whether this user is refused the disk that the enumeration yields for the controller. */
bool isRefused(const TLXX::CControllerState& state);

/** How many disks the enumeration yields. */
std::size_t countDisks(const std::vector<TLXX::CControllerState>& states);

/** Whether there is a disk that does not refuse this user. */
bool anyDiskOpens(const std::vector<TLXX::CControllerState>& states);

/**
 * Says at once what a request would find out only after its retries: throws `Failure` (no permission) when
 * there are disks and every one refuses this user; warns when some do.
 */
void checkAccess(const std::vector<TLXX::CControllerState>& states, const Warn& warn);

} // namespace Host
