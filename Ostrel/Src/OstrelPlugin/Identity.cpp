#include "OstrelPlugin/Identity.h"

#include "Records/Module.h"
#include "Records/Text.h"

namespace NAMESPACE_Ostrel {

std::string pluginLocation()
{
    return formatted("Plugin:ID=%d", MODULE_ID);
}

} // namespace NAMESPACE_Ostrel
