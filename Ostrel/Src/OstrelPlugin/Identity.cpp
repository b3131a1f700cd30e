#include "OstrelPlugin/Identity.h"

#include "Ostrel/Module.h"

#include <boost/format.hpp>

namespace NAMESPACE_Ostrel {

std::string pluginLocation()
{
    return (boost::format("Plugin:ID=%d") % MODULE_ID).str();
}

} // namespace NAMESPACE_Ostrel
