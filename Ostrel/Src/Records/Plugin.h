#pragma once

#include <PI/Object.h>

namespace NAMESPACE_Ostrel {

/** The plug-in's own object in the topology. */
class CNVMePlugin : public PI::CObject
{};

} // namespace NAMESPACE_Ostrel
