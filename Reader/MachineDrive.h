#pragma once

#include "Drives.h"

namespace Reader {

/** A controller of this machine. */
std::unique_ptr<IDrive> openMachineDrive(const Controller& controller);

} // namespace Reader
