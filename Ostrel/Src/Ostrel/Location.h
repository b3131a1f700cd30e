#pragma once

#include "OstrelAdapter/Record.h"

#include <PI/AdapterID.h>

#include <string>
#include <vector>

namespace NAMESPACE_Ostrel {

/** The location text of the controller where `adapter` sits. */
std::string adapterLocation(const CNVMeAdapter& adapter);

/** The location text of the one disk behind `adapter`. */
std::string driveLocation(const CNVMeAdapter& adapter);

/** The first of the host's identities that is for the location of `adapter` and has a number; null if none.
 */
const PI::CAdapterID* findIdentity(const std::vector<PI::CAdapterID>& identities,
                                   const CNVMeAdapter& adapter);

} // namespace NAMESPACE_Ostrel
