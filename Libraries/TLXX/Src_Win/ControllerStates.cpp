#include "Platform.h"

#include <TLXX/Win/DeviceFile.h>
#include <TLXX/Win/DeviceNodes.h>

#include <boost/algorithm/string/predicate.hpp>

#include <locale>

#include <windows.h>
#include <cfgmgr32.h>
#include <winioctl.h>

namespace TLXX {
namespace {

using Win::DeviceNode;

bool isServedBy(DeviceNode node, const char* service)
{
    return boost::iequals(Win::nodeService(node), service, std::locale::classic());
}

std::string instanceId(DeviceNode node)
{
    char buffer[MAX_DEVICE_ID_LEN + 1] = {};
    return CM_Get_Device_IDA(node, buffer, MAX_DEVICE_ID_LEN, 0) == CR_SUCCESS ? buffer : "";
}

/** The paths that may open the disk at `node`, in the system's order. */
std::vector<std::string> diskInterfaces(DeviceNode node)
{
    std::string instance = instanceId(node);
    ULONG length = 0;
    if (instance.empty() || CM_Get_Device_Interface_List_SizeA(
                                &length, const_cast<GUID*>(&GUID_DEVINTERFACE_DISK), instance.data(),
                                CM_GET_DEVICE_INTERFACE_LIST_PRESENT) != CR_SUCCESS)
        return {};
    std::string list(length, '\0');
    if (CM_Get_Device_Interface_ListA(const_cast<GUID*>(&GUID_DEVINTERFACE_DISK), instance.data(),
                                      list.data(), length,
                                      CM_GET_DEVICE_INTERFACE_LIST_PRESENT) != CR_SUCCESS)
        return {};
    std::vector<std::string> paths;
    for (std::size_t begin = 0; begin < list.size() && list[begin] != '\0'; begin += paths.back().size() + 1)
        paths.emplace_back(list.c_str() + begin);
    return paths;
}

/** Fills in the disk below the controller at `node`: the one that the enumeration uses. */
void addDisk(DeviceNode node, CControllerState& state)
{
    DEVINST child = 0;
    if (CM_Get_Child(&child, node, 0) != CR_SUCCESS || !isServedBy(child, "disk"))
        return;
    // Each namespace is a disk of its own.
    DEVINST sibling = child;
    do
        state.m_Namespaces += isServedBy(sibling, "disk") ? 1 : 0;
    while (CM_Get_Sibling(&sibling, sibling, 0) == CR_SUCCESS);
    for (const std::string& path : diskInterfaces(child)) {
        state.m_AccessStatus = Win::CDeviceFile(path, GENERIC_READ).Status();
        state.m_AccessPath = path;
        // Asking for the number needs no right to read, so a disk has its name even when the user may not
        // read it.
        if (const auto number = Win::CDeviceFile(path, 0).DiskNumber()) {
            state.m_DeviceName = R"(\\.\PhysicalDrive)" + std::to_string(*number);
            state.m_AccessPath = state.m_DeviceName;
            return;
        }
    }
}

CControllerState stateOf(DeviceNode node)
{
    CControllerState state;
    state.m_Name = instanceId(node);
    state.m_Driver = Win::nodeService(node);
    state.m_Location = Win::nodeLocation(node);
    state.m_Transport = state.m_Location ? "pcie" : "";
    addDisk(node, state);
    return state;
}

} // namespace

std::vector<CControllerState> Platform::controllerStates()
{
    std::vector<CControllerState> states;
    for (const DeviceNode node : Win::deviceNodes()) {
        if (isServedBy(node, "stornvme"))
            states.push_back(stateOf(node));
    }
    return states;
}

} // namespace TLXX
