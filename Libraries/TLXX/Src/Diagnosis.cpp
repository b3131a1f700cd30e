#include "Platform.h"

#include <TLXX/DeviceBackend.h>
#include <TLXX/Diagnosis.h>

namespace TLXX {
namespace {

std::vector<CControllerState> statesOf(IDeviceBackend& backend)
{
    std::vector<CControllerState> states;
    std::uint32_t number = 0;
    for (const CDeviceEntry& entry : backend.Enumerate()) {
        CControllerState state;
        state.m_Name = entry.m_DeviceName;
        state.m_DeviceName = entry.m_DeviceName;
        state.m_Driver = entry.m_Driver;
        state.m_Location = backend.Location(++number);
        state.m_Transport = state.m_Location ? "pcie" : "";
        state.m_Namespaces = 1;
        state.m_AccessPath = entry.m_DeviceName;
        states.push_back(state);
    }
    return states;
}

} // namespace

std::vector<CControllerState> controllerStates()
{
    const auto backend = deviceBackend();
    return backend ? statesOf(*backend) : Platform::controllerStates();
}

} // namespace TLXX
