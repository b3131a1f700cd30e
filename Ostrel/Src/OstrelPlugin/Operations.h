#pragma once

#include <PI/Operation.h>

#include <vector>

namespace NAMESPACE_Ostrel {

/** What the plug-in's object can be asked to do. Adapters and drives offer no operations. */
std::vector<PI::COperation> pluginOperations();

} // namespace NAMESPACE_Ostrel
