#pragma once

#include "Records/Adapter.h"

#include <string>

namespace NAMESPACE_Ostrel {

/** The location text of a controller in the place of `adapter`. */
std::string adapterLocation(const CNVMeAdapter& adapter);

/** The location text of the one disk of the adapter with this location text. */
std::string driveLocation(const std::string& adapterLocation);

} // namespace NAMESPACE_Ostrel
