#include "Attribute.h"
#include "DeviceTable.h"
#include "FileDescriptor.h"
#include "PciLink.h"
#include "Platform.h"

#include <TLXX/Linux/Sysfs.h>

namespace TLXX {
namespace {

CControllerState stateOf(const Linux::CController& controller)
{
    CControllerState state;
    state.m_Name = controller.m_Name;
    state.m_DeviceName = controller.m_Transport == "pcie" ? controller.m_DeviceName : std::string();
    state.m_Driver = controller.m_Driver;
    state.m_Transport = controller.m_Transport;
    state.m_State = controller.m_State;
    state.m_Location = controller.m_Location;
    const std::filesystem::path folder = Linux::sysfsRoot() / "class" / "nvme" / controller.m_Name;
    state.m_SerialNumber = Linux::readAttribute((folder / "serial").c_str());
    state.m_Model = Linux::readAttribute((folder / "model").c_str());
    state.m_FirmwareRevision = Linux::readAttribute((folder / "firmware_rev").c_str());
    if (controller.m_Transport == "pcie")
        state.m_Link = Linux::readLink(folder / "device");
    state.m_Namespaces = controller.m_Namespaces;
    state.m_AccessPath = Linux::controllerNode(controller.m_Instance);
    state.m_AccessStatus = Linux::CFileDescriptor(state.m_AccessPath.c_str()).Status();
    return state;
}

} // namespace

std::vector<CControllerState> Platform::controllerStates()
{
    std::vector<CControllerState> states;
    for (const Linux::CController& controller : Linux::listControllers(Linux::sysfsRoot()))
        states.push_back(stateOf(controller));
    return states;
}

} // namespace TLXX
