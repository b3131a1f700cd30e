// The configuration manager's functions, answered from the test's tree.

#include "Tree.h"

#include <algorithm>
#include <cstring>
#include <optional>

// clang-format off
#include <initguid.h>
#include <devpropdef.h>
#include <cfgmgr32.h>
#include <devpkey.h>
#include <winioctl.h>
// clang-format on

using namespace DeviceTree;

namespace {

CONFIGRET step(DEVINST* to, DEVINST from, std::size_t (*direction)(const Nodes&, std::size_t))
{
    const Nodes nodes = read();
    const std::size_t index = find(nodes, from);
    if (index == nodes.size())
        return CR_NO_SUCH_DEVNODE;
    const std::size_t found = direction(nodes, index);
    if (found == nodes.size())
        return CR_NO_SUCH_DEVNODE;
    *to = nodes[found].handle();
    return CR_SUCCESS;
}

/** The type of a registry property's bytes. */
enum class EKind
{
    text,
    texts,
    number
};

EKind kindOf(ULONG property)
{
    switch (property) {
    case CM_DRP_BUSNUMBER:
    case CM_DRP_ADDRESS:
    case CM_DRP_UI_NUMBER:
        return EKind::number;
    case CM_DRP_LOCATION_PATHS:
    case CM_DRP_HARDWAREID:
    case CM_DRP_COMPATIBLEIDS:
        return EKind::texts;
    default:
        return EKind::text;
    }
}

template<typename Char>
std::string bytesOf(ULONG property, const std::string& value)
{
    const EKind kind = kindOf(property);
    if (kind == EKind::number) {
        const DWORD number = std::stoul(value, nullptr, 0);
        return {reinterpret_cast<const char*>(&number), sizeof(number)};
    }
    std::basic_string<Char> text(value.begin(), value.end());
    text.append(kind == EKind::texts ? 2 : 1, Char{});
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(Char)};
}

CONFIGRET property(DEVINST device, ULONG number, std::string& value)
{
    const Nodes nodes = read();
    const std::size_t index = find(nodes, device);
    if (index == nodes.size())
        return CR_NO_SUCH_DEVNODE;
    const auto found = nodes[index].m_Properties.find(number);
    if (found == nodes[index].m_Properties.end())
        return CR_NO_SUCH_VALUE;
    value = found->second;
    return CR_SUCCESS;
}

CONFIGRET give(const std::string& bytes, void* buffer, ULONG* size)
{
    const ULONG room = *size;
    *size = static_cast<ULONG>(bytes.size());
    if (buffer == nullptr || room < bytes.size())
        return CR_BUFFER_SMALL;
    std::memcpy(buffer, bytes.data(), bytes.size());
    return CR_SUCCESS;
}

/** The paths of the disk interfaces that the device has, each ended by a zero, and a zero after the last. */
std::string diskInterfaces(const GUID& type, const char* instance)
{
    const Nodes nodes = read();
    const std::size_t index = instance != nullptr ? find(nodes, std::string(instance)) : nodes.size();
    std::string list;
    if (index != nodes.size() && IsEqualGUID(type, GUID_DEVINTERFACE_DISK))
        for (const std::string& path : nodes[index].m_Interfaces)
            list += path + '\0';
    return list + '\0';
}

/** The registry property for a key. The numbers of keys in this category are one higher. */
std::optional<ULONG> registryProperty(const DEVPROPKEY& key)
{
    if (!IsEqualGUID(key.fmtid, DEVPKEY_Device_Service.fmtid))
        return std::nullopt;
    return key.pid - 1;
}

} // namespace

extern "C" {

CONFIGRET WINAPI CM_Locate_DevNodeA(DEVINST* device, DEVINSTID_A instance, ULONG flags)
{
    const Nodes nodes = read();
    const std::size_t index = instance != nullptr ? find(nodes, std::string(instance)) : 0;
    if (flags != CM_LOCATE_DEVNODE_NORMAL)
        return CR_INVALID_FLAG;
    if (index >= nodes.size())
        return CR_NO_SUCH_DEVNODE;
    *device = nodes[index].handle();
    return CR_SUCCESS;
}

CONFIGRET WINAPI CM_Get_Child(DEVINST* to, DEVINST from, ULONG flags)
{
    return flags == 0 ? step(to, from, child) : CR_INVALID_FLAG;
}

CONFIGRET WINAPI CM_Get_Sibling(DEVINST* to, DEVINST from, ULONG flags)
{
    return flags == 0 ? step(to, from, sibling) : CR_INVALID_FLAG;
}

CONFIGRET WINAPI CM_Get_Parent(DEVINST* to, DEVINST from, ULONG flags)
{
    return flags == 0 ? step(to, from, parent) : CR_INVALID_FLAG;
}

CONFIGRET WINAPI CM_Get_DevNode_Registry_PropertyA(DEVINST device, ULONG number, ULONG* type, void* buffer,
                                                   ULONG* size, ULONG flags)
{
    if (flags != 0)
        return CR_INVALID_FLAG;
    std::string value;
    const CONFIGRET result = property(device, number, value);
    if (result != CR_SUCCESS)
        return result;
    if (type != nullptr)
        *type = kindOf(number) == EKind::number  ? REG_DWORD
                : kindOf(number) == EKind::texts ? REG_MULTI_SZ
                                                 : REG_SZ;
    return give(bytesOf<char>(number, value), buffer, size);
}

CONFIGRET WINAPI CM_Get_DevNode_PropertyW(DEVINST device, const DEVPROPKEY* key, DEVPROPTYPE* type,
                                          BYTE* buffer, ULONG* size, ULONG flags)
{
    if (flags != 0)
        return CR_INVALID_FLAG;
    const std::optional<ULONG> number = registryProperty(*key);
    if (!number)
        return CR_NO_SUCH_VALUE;
    std::string value;
    const CONFIGRET result = property(device, *number, value);
    if (result != CR_SUCCESS)
        return result;
    *type = kindOf(*number) == EKind::number  ? DEVPROP_TYPE_UINT32
            : kindOf(*number) == EKind::texts ? DEVPROP_TYPE_STRING_LIST
                                              : DEVPROP_TYPE_STRING;
    return give(bytesOf<wchar_t>(*number, value), buffer, size);
}

CONFIGRET WINAPI CM_Get_Device_IDA(DEVINST device, PSTR buffer, ULONG size, ULONG flags)
{
    if (flags != 0)
        return CR_INVALID_FLAG;
    const Nodes nodes = read();
    const std::size_t index = find(nodes, device);
    if (index == nodes.size())
        return CR_NO_SUCH_DEVNODE;
    const std::string& instance = nodes[index].m_Instance;
    if (instance.size() > size)
        return CR_BUFFER_SMALL;
    // As the system does: the zero is there when it fits.
    std::memcpy(buffer, instance.c_str(), std::min<std::size_t>(size, instance.size() + 1));
    return CR_SUCCESS;
}

CONFIGRET WINAPI CM_Get_Device_Interface_List_SizeA(ULONG* size, GUID* type, DEVINSTID_A instance,
                                                    ULONG flags)
{
    if (flags != CM_GET_DEVICE_INTERFACE_LIST_PRESENT)
        return CR_INVALID_FLAG;
    *size = static_cast<ULONG>(diskInterfaces(*type, instance).size());
    return CR_SUCCESS;
}

CONFIGRET WINAPI CM_Get_Device_Interface_ListA(GUID* type, DEVINSTID_A instance, PZZSTR buffer, ULONG size,
                                               ULONG flags)
{
    if (flags != CM_GET_DEVICE_INTERFACE_LIST_PRESENT)
        return CR_INVALID_FLAG;
    return give(diskInterfaces(*type, instance), buffer, &size);
}

} // extern "C"
