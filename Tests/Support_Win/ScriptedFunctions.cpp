#include "Support_Win/ScriptedDevices.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include <windows.h>
#include <cfgmgr32.h>
#include <setupapi.h>
#include <winioctl.h>

namespace TestSupport {
namespace {

CScriptedDevices& devices()
{
    return *scriptedDevices();
}

BOOL fail(DWORD error)
{
    SetLastError(error);
    return FALSE;
}

/** The system's own function, because this program's imports may be replaced. */
template<typename Function>
Function* systemFunction(Function* /*imported*/, const char* name)
{
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), name)));
}

std::string text(std::uint64_t number)
{
    return std::to_string(number);
}

} // namespace

/** The replacements of the system's functions. */
struct ScriptedFunctions
{
    static CONFIGRET WINAPI locate(PDEVINST node, DEVINSTID_A instance, ULONG flags)
    {
        EXPECT_EQ(instance, nullptr);
        EXPECT_EQ(flags, 0U);
        if (devices().Fails("Locate") || !devices().m_HasRoot)
            return CR_NO_SUCH_DEVNODE;
        *node = CScriptedDevices::ROOT;
        return CR_SUCCESS;
    }

    static CONFIGRET give(PDEVINST target, CScriptedDevices::Node node)
    {
        if (node == 0)
            return CR_NO_SUCH_DEVNODE;
        *target = node;
        return CR_SUCCESS;
    }

    static CONFIGRET WINAPI child(PDEVINST target, DEVINST node, ULONG flags)
    {
        EXPECT_EQ(flags, 0U);
        const auto* const found = devices().Find(node);
        if (devices().Fails("Child " + text(node)) || found == nullptr || found->m_Children.empty())
            return CR_NO_SUCH_DEVNODE;
        return give(target, found->m_Children.front());
    }

    static CONFIGRET WINAPI sibling(PDEVINST target, DEVINST node, ULONG flags)
    {
        EXPECT_EQ(flags, 0U);
        if (devices().Fails("Sibling " + text(node)))
            return CR_NO_SUCH_DEVNODE;
        return give(target, devices().Neighbour(node));
    }

    static CONFIGRET WINAPI parent(PDEVINST target, DEVINST node, ULONG flags)
    {
        EXPECT_EQ(flags, 0U);
        const auto* const found = devices().Find(node);
        if (devices().Fails("Parent " + text(node)) || found == nullptr)
            return CR_NO_SUCH_DEVNODE;
        return give(target, found->m_Parent);
    }

    static CONFIGRET WINAPI property(DEVINST node, ULONG number, PULONG type, PVOID buffer, PULONG length,
                                     ULONG flags)
    {
        EXPECT_EQ(type, nullptr);
        EXPECT_EQ(flags, 0U);
        const auto* const found = devices().Find(node);
        if (devices().Fails("Property " + text(node) + " " + text(number) + " " + text(*length)) ||
            found == nullptr)
            return CR_NO_SUCH_DEVNODE;
        const auto value = found->m_Properties.find(number);
        if (value == found->m_Properties.end())
            return CR_NO_SUCH_VALUE;
        const ULONG room = std::exchange(*length, static_cast<ULONG>(value->second.size()));
        if (room < value->second.size())
            return CR_BUFFER_SMALL;
        std::copy(value->second.begin(), value->second.end(), static_cast<char*>(buffer));
        return CR_SUCCESS;
    }

    static CONFIGRET WINAPI instance(DEVINST node, PCHAR buffer, ULONG length, ULONG flags)
    {
        EXPECT_EQ(flags, 0U);
        if (devices().Fails("Instance " + text(node) + " " + text(length)) || devices().Find(node) == nullptr)
            return CR_NO_SUCH_DEVNODE;
        const std::string name = CScriptedDevices::Instance(node);
        if (name.size() + 1 > length)
            return CR_BUFFER_SMALL;
        std::memcpy(buffer, name.c_str(), name.size() + 1);
        return CR_SUCCESS;
    }

    static CScriptedDevices::Node nodeOf(const char* name)
    {
        for (const auto& [node, unused] : devices().m_Nodes) {
            if (CScriptedDevices::Instance(node) == name)
                return node;
        }
        return 0;
    }

    static HDEVINFO WINAPI openSet(const GUID* guid, PCSTR enumerator, HWND window, DWORD flags)
    {
        EXPECT_TRUE(IsEqualGUID(*guid, GUID_DEVINTERFACE_DISK));
        EXPECT_EQ(window, nullptr);
        EXPECT_EQ(flags, 0x12U);
        const CScriptedDevices::Node node = nodeOf(enumerator);
        if (devices().Fails("OpenSet " + text(node)) || node == 0) {
            SetLastError(ERROR_INVALID_DATA);
            return INVALID_HANDLE_VALUE;
        }
        void* const set = reinterpret_cast<void*>(++devices().m_LastHandle);
        devices().m_Sets[set] = node;
        return set;
    }

    static BOOL WINAPI closeSet(HDEVINFO set)
    {
        devices().m_Calls.emplace_back("CloseSet");
        EXPECT_EQ(devices().m_Sets.erase(set), 1U);
        return TRUE;
    }

    static BOOL WINAPI interfaceAt(HDEVINFO set, PSP_DEVINFO_DATA device, const GUID* guid, DWORD index,
                                   PSP_DEVICE_INTERFACE_DATA data)
    {
        EXPECT_EQ(device, nullptr);
        EXPECT_TRUE(IsEqualGUID(*guid, GUID_DEVINTERFACE_DISK));
        EXPECT_EQ(data->cbSize, 32U);
        const auto found = devices().m_Sets.find(set);
        EXPECT_NE(found, devices().m_Sets.end());
        if (devices().Fails("Interface " + text(index)) ||
            index >= devices().Find(found->second)->m_Disks.size())
            return fail(ERROR_NO_MORE_ITEMS);
        data->Reserved = index;
        return TRUE;
    }

    static BOOL WINAPI detail(HDEVINFO set, PSP_DEVICE_INTERFACE_DATA data,
                              PSP_DEVICE_INTERFACE_DETAIL_DATA_A buffer, DWORD size, PDWORD required,
                              PSP_DEVINFO_DATA device)
    {
        const CScriptedDisk& disk = devices().Find(devices().m_Sets.at(set))->m_Disks.at(data->Reserved);
        const std::size_t exact =
            offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_A, DevicePath) + disk.m_Path.size() + 1;
        const DWORD needed =
            disk.m_DetailSize.value_or(static_cast<DWORD>(std::max<std::size_t>(exact, sizeof *buffer)));
        if (buffer == nullptr) {
            EXPECT_EQ(size, 0U);
            EXPECT_EQ(device, nullptr);
            if (devices().Fails("DetailSize"))
                return fail(ERROR_INVALID_PARAMETER);
            *required = needed;
            return fail(disk.m_ProbeError);
        }
        EXPECT_EQ(size, needed);
        EXPECT_EQ(buffer->cbSize, 8U);
        EXPECT_EQ(device->cbSize, 32U);
        const auto* const bytes = reinterpret_cast<const char*>(buffer);
        EXPECT_TRUE(std::all_of(bytes + sizeof(DWORD), bytes + size, [](char byte) { return byte == 0; }));
        if (devices().Fails("Detail") || !disk.m_Detailed)
            return fail(ERROR_INVALID_USER_BUFFER);
        const std::size_t room = size - offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_A, DevicePath);
        std::memcpy(buffer->DevicePath, disk.m_Path.c_str(), std::min(disk.m_Path.size() + 1, room));
        return TRUE;
    }

    static CONFIGRET WINAPI interfaceListSize(PULONG length, LPGUID guid, DEVINSTID_A name, ULONG flags)
    {
        EXPECT_TRUE(IsEqualGUID(*guid, GUID_DEVINTERFACE_DISK));
        EXPECT_EQ(flags, static_cast<ULONG>(CM_GET_DEVICE_INTERFACE_LIST_PRESENT));
        const CScriptedDevices::Node node = nodeOf(name);
        if (devices().Fails("InterfaceListSize " + text(node)) || node == 0)
            return CR_NO_SUCH_DEVNODE;
        *length = 1;
        for (const CScriptedDisk& disk : devices().Find(node)->m_Disks)
            *length += static_cast<ULONG>(disk.m_Path.size() + 1);
        return CR_SUCCESS;
    }

    static CONFIGRET WINAPI interfaceList(LPGUID guid, DEVINSTID_A name, PCHAR buffer, ULONG length,
                                          ULONG flags)
    {
        EXPECT_TRUE(IsEqualGUID(*guid, GUID_DEVINTERFACE_DISK));
        EXPECT_EQ(flags, static_cast<ULONG>(CM_GET_DEVICE_INTERFACE_LIST_PRESENT));
        const CScriptedDevices::Node node = nodeOf(name);
        if (devices().Fails("InterfaceList " + text(node)) || node == 0)
            return CR_NO_SUCH_DEVNODE;
        std::string list;
        for (const CScriptedDisk& disk : devices().Find(node)->m_Disks)
            list += disk.m_Path + '\0';
        list += '\0';
        if (list.size() > length)
            return CR_BUFFER_SMALL;
        std::copy(list.begin(), list.end(), buffer);
        return CR_SUCCESS;
    }

    static HANDLE WINAPI open(LPCSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                              DWORD disposition, DWORD attributes, HANDLE model)
    {
        const CScriptedDisk* const disk = devices().FindDisk(path);
        if (disk == nullptr)
            return systemFunction(CreateFileA, "CreateFileA")(path, access, share, security, disposition,
                                                              attributes, model);
        EXPECT_EQ(share, static_cast<DWORD>(FILE_SHARE_READ | FILE_SHARE_WRITE));
        EXPECT_EQ(security, nullptr);
        EXPECT_EQ(disposition, static_cast<DWORD>(OPEN_EXISTING));
        EXPECT_EQ(attributes, static_cast<DWORD>(FILE_ATTRIBUTE_NORMAL));
        EXPECT_EQ(model, nullptr);
        const bool mayRead = disk->m_OpenError != ERROR_ACCESS_DENIED || access == 0;
        const DWORD error = mayRead && disk->m_OpenError == ERROR_ACCESS_DENIED ? 0 : disk->m_OpenError;
        if (devices().Fails(std::string("Open ") + path +
                            (access == GENERIC_READ ? "" : " " + text(access))) ||
            error != 0) {
            SetLastError(error != 0 ? error : ERROR_NOT_READY);
            return INVALID_HANDLE_VALUE;
        }
        void* const handle = reinterpret_cast<void*>(++devices().m_LastHandle);
        devices().m_Handles[handle] = path;
        return handle;
    }

    static BOOL WINAPI control(HANDLE handle, DWORD code, LPVOID input, DWORD inputSize, LPVOID output,
                               DWORD outputSize, LPDWORD returned, LPOVERLAPPED overlapped)
    {
        const auto found = devices().m_Handles.find(handle);
        if (found == devices().m_Handles.end())
            return systemFunction(DeviceIoControl, "DeviceIoControl")(handle, code, input, inputSize, output,
                                                                      outputSize, returned, overlapped);
        EXPECT_EQ(overlapped, nullptr);
        if (devices().Fails("Control " + text(code)))
            return fail(ERROR_IO_DEVICE);
        if (code != IOCTL_STORAGE_GET_DEVICE_NUMBER) {
            const auto* const bytes = static_cast<const std::uint8_t*>(input);
            const DWORD error = devices().m_Control({found->second,
                                                     code,
                                                     {bytes, bytes + inputSize},
                                                     static_cast<std::uint8_t*>(output),
                                                     outputSize,
                                                     returned});
            return error == 0 ? TRUE : fail(error);
        }
        EXPECT_EQ(input, nullptr);
        EXPECT_EQ(inputSize, 0U);
        EXPECT_EQ(outputSize, 12U);
        const CScriptedDisk* const disk = devices().FindDisk(found->second);
        if (!disk->m_Number)
            return fail(ERROR_INVALID_FUNCTION);
        const STORAGE_DEVICE_NUMBER number{disk->m_Type, *disk->m_Number, disk->m_Partition};
        std::memcpy(output, &number, sizeof number);
        *returned = disk->m_NumberBytes;
        return TRUE;
    }

    static BOOL WINAPI close(HANDLE handle)
    {
        if (devices().m_Handles.erase(handle) == 0)
            return systemFunction(CloseHandle, "CloseHandle")(handle);
        devices().m_Calls.emplace_back("Close");
        return TRUE;
    }
};

void CScriptedDevices::Attach(const wchar_t* module)
{
    const auto patch = [&](const char* name, auto* function) {
        if (CImportPatch::Imports(module, name))
            m_Patches.emplace_back(module, name, function);
    };
    patch("CM_Locate_DevNodeA", ScriptedFunctions::locate);
    patch("CM_Get_Child", ScriptedFunctions::child);
    patch("CM_Get_Sibling", ScriptedFunctions::sibling);
    patch("CM_Get_Parent", ScriptedFunctions::parent);
    patch("CM_Get_DevNode_Registry_PropertyA", ScriptedFunctions::property);
    patch("CM_Get_Device_IDA", ScriptedFunctions::instance);
    patch("CM_Get_Device_Interface_List_SizeA", ScriptedFunctions::interfaceListSize);
    patch("CM_Get_Device_Interface_ListA", ScriptedFunctions::interfaceList);
    patch("SetupDiGetClassDevsA", ScriptedFunctions::openSet);
    patch("SetupDiEnumDeviceInterfaces", ScriptedFunctions::interfaceAt);
    patch("SetupDiGetDeviceInterfaceDetailA", ScriptedFunctions::detail);
    patch("SetupDiDestroyDeviceInfoList", ScriptedFunctions::closeSet);
    patch("CreateFileA", ScriptedFunctions::open);
    patch("DeviceIoControl", ScriptedFunctions::control);
    patch("CloseHandle", ScriptedFunctions::close);
}

} // namespace TestSupport
