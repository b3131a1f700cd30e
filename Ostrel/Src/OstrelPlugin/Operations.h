#pragma once

#include <PI/Operation.h>

#include <vector>

namespace NAMESPACE_Ostrel {

/** The operations of the plug-in's object. Adapters and drives offer none. */
std::vector<PI::COperation> pluginOperations();

} // namespace NAMESPACE_Ostrel
