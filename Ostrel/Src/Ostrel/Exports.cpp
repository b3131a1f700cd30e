#include "Ostrel/Guarded.h"
#include "Ostrel/PluginApi.h"
#include "Records/Module.h"

#include <PI/ErrorCode.h>

#include <boost/config.hpp>

#include <memory>
#include <utility>

using NAMESPACE_Ostrel::g_ModuleInfo;
using NAMESPACE_Ostrel::guarded;
using NAMESPACE_Ostrel::IPLUGINAPI_IMPL;

/** Stores a new plug-in object, or null when the result is not 0. */
extern "C" BOOST_SYMBOL_EXPORT std::uint32_t createIf(IPLUGINAPI** plugin)
{
    if (plugin == nullptr)
        return PI::ERR_GENERAL_FAILURE;
    *plugin = nullptr;
    return guarded([plugin] {
        auto created = std::make_unique<IPLUGINAPI_IMPL>();
        created->m_Module = g_ModuleInfo.Number();
        *plugin = created.release();
        return std::uint32_t{PI::ERR_SUCCESS};
    });
}

/** Destroys the plug-in object, if there is one, and stores null. */
extern "C" BOOST_SYMBOL_EXPORT void releaseIf(IPLUGINAPI** plugin)
{
    if (plugin != nullptr)
        delete std::exchange(*plugin, nullptr);
}
