#include "OstrelPlugin/Identity.h"

#include "Records/Module.h"

namespace NAMESPACE_Ostrel {

std::string pluginLocation()
{
    return "Plugin:ID=" + std::to_string(MODULE_ID);
}

} // namespace NAMESPACE_Ostrel
