#include "OstrelPlugin/Identity.h"

#include "Ostrel/Module.h"
#include "Ostrel/Text.h"

namespace NAMESPACE_Ostrel {

std::string pluginLocation()
{
    return formatted("Plugin:ID=%d", MODULE_ID);
}

} // namespace NAMESPACE_Ostrel
