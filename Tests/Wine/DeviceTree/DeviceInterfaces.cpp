// The device installer's functions that list interfaces of disks, answered from the test's tree.

#include "Tree.h"

#include <cstring>

// clang-format off
#include <initguid.h>
#include <setupapi.h>
#include <winioctl.h>
// clang-format on

using namespace DeviceTree;

namespace {

/** The content of a device-information set. */
struct Set
{
    Node m_Node;
};

BOOL failed(DWORD error)
{
    SetLastError(error);
    return FALSE;
}

} // namespace

extern "C" {

HDEVINFO WINAPI SetupDiGetClassDevsA(const GUID* type, PCSTR enumerator, HWND /*window*/, DWORD flags)
{
    constexpr DWORD EXPECTED = DIGCF_PRESENT | DIGCF_DEVICEINTERFACE;
    const Nodes nodes = read();
    const std::size_t index = enumerator != nullptr ? find(nodes, std::string(enumerator)) : nodes.size();
    if (index == nodes.size() || type == nullptr || !IsEqualGUID(*type, GUID_DEVINTERFACE_DISK) ||
        flags != EXPECTED) {
        SetLastError(ERROR_INVALID_DATA);
        return INVALID_HANDLE_VALUE;
    }
    return new Set{nodes[index]};
}

BOOL WINAPI SetupDiEnumDeviceInterfaces(HDEVINFO handle, PSP_DEVINFO_DATA /*device*/, const GUID* type,
                                        DWORD index, PSP_DEVICE_INTERFACE_DATA data)
{
    const auto* set = static_cast<const Set*>(handle);
    if (data == nullptr || data->cbSize != sizeof(*data) || !IsEqualGUID(*type, GUID_DEVINTERFACE_DISK))
        return failed(ERROR_INVALID_PARAMETER);
    if (index >= set->m_Node.m_Interfaces.size())
        return failed(ERROR_NO_MORE_ITEMS);
    data->InterfaceClassGuid = *type;
    data->Flags = SPINT_ACTIVE;
    data->Reserved = index;
    return TRUE;
}

BOOL WINAPI SetupDiGetDeviceInterfaceDetailA(HDEVINFO handle, PSP_DEVICE_INTERFACE_DATA data,
                                             PSP_DEVICE_INTERFACE_DETAIL_DATA_A detail, DWORD size,
                                             DWORD* required, PSP_DEVINFO_DATA device)
{
    const auto* set = static_cast<const Set*>(handle);
    const std::string& path = set->m_Node.m_Interfaces[data->Reserved];
    const DWORD needed =
        static_cast<DWORD>(offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_A, DevicePath) + path.size() + 1);
    if (detail != nullptr && detail->cbSize != sizeof(*detail))
        return failed(ERROR_INVALID_USER_BUFFER);
    if (device != nullptr && device->cbSize != sizeof(*device))
        return failed(ERROR_INVALID_USER_BUFFER);
    if (required != nullptr)
        *required = needed;
    if (detail == nullptr || size < needed)
        return failed(ERROR_INSUFFICIENT_BUFFER);
    std::memcpy(static_cast<char*>(detail->DevicePath), path.c_str(), path.size() + 1);
    if (device != nullptr) {
        device->ClassGuid = {};
        device->DevInst = set->m_Node.handle();
    }
    return TRUE;
}

BOOL WINAPI SetupDiDestroyDeviceInfoList(HDEVINFO handle)
{
    delete static_cast<Set*>(handle);
    return TRUE;
}

} // extern "C"
