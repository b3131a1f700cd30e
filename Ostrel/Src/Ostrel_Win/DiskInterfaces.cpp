#include "Ostrel_Win/DiskInterfaces.h"

#include <TLX/Win/UniqueHandle.h>
#include <TLXX/Win/DeviceFile.h>

#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <string>

#include <windows.h>
#include <setupapi.h>
#include <winioctl.h>

namespace NAMESPACE_Ostrel {
namespace {

using DetailData = SP_DEVICE_INTERFACE_DETAIL_DATA_A;

static_assert(sizeof(DetailData) == 8);
static_assert(sizeof(SP_DEVINFO_DATA) == 32);
static_assert((DIGCF_PRESENT | DIGCF_DEVICEINTERFACE) == 0x12);

struct DeviceInfoSetPolicy
{
    using Handle = HDEVINFO;
    static Handle none() { return INVALID_HANDLE_VALUE; }
    static void close(Handle handle) { SetupDiDestroyDeviceInfoList(handle); }
};
using CDeviceInfoSet = TLX::Win::CUniqueHandle<DeviceInfoSetPolicy>;

std::optional<std::string> devicePath(HDEVINFO set, SP_DEVICE_INTERFACE_DATA& entry)
{
    DWORD size = 0;
    SetupDiGetDeviceInterfaceDetailA(set, &entry, nullptr, 0, &size, nullptr);
    if (GetLastError() != ERROR_INSUFFICIENT_BUFFER || size < sizeof(DetailData))
        return std::nullopt;
    const std::unique_ptr<std::byte[]> buffer(new (std::nothrow) std::byte[size]());
    if (!buffer)
        return std::nullopt;
    auto* const detail = reinterpret_cast<DetailData*>(buffer.get());
    detail->cbSize = sizeof(DetailData);
    SP_DEVINFO_DATA device{};
    device.cbSize = sizeof device;
    if (SetupDiGetDeviceInterfaceDetailA(set, &entry, detail, size, nullptr, &device) == FALSE)
        return std::nullopt;
    const std::size_t room = size - offsetof(DetailData, DevicePath);
    return std::string(detail->DevicePath, strnlen(detail->DevicePath, room));
}

} // namespace

void forEachDiskInterface(const char* instance, const std::function<void(std::uint32_t)>& found)
{
    const CDeviceInfoSet set(SetupDiGetClassDevsA(&GUID_DEVINTERFACE_DISK, instance, nullptr,
                                                  DIGCF_PRESENT | DIGCF_DEVICEINTERFACE));
    if (!set.Valid())
        return;
    SP_DEVICE_INTERFACE_DATA entry{};
    entry.cbSize = sizeof entry;
    for (DWORD index = 0;
         SetupDiEnumDeviceInterfaces(set.Get(), nullptr, &GUID_DEVINTERFACE_DISK, index, &entry) != FALSE;
         ++index) {
        const auto path = devicePath(set.Get(), entry);
        if (!path)
            continue;
        if (const auto number = TLXX::Win::CDeviceFile(*path, GENERIC_READ).DiskNumber())
            found(*number);
    }
}

} // namespace NAMESPACE_Ostrel
