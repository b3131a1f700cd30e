#include "Platform.h"

#include <TLXX/DeviceBackend.h>
#include <TLXX/System.h>

namespace TLXX {

std::string CSystem::GetModuleVersion(const std::string& module)
{
    const auto backend = deviceBackend();
    return backend ? backend->ModuleVersion(module) : Platform::moduleVersion(module);
}

} // namespace TLXX
