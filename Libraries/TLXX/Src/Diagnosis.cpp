#include "Platform.h"

#include <TLXX/DeviceBackend.h>
#include <TLXX/Diagnosis.h>

namespace TLXX {

std::vector<CControllerState> controllerStates()
{
    const auto backend = deviceBackend();
    return backend ? backend->ControllerStates() : Platform::controllerStates();
}

} // namespace TLXX
