#include "DeviceFile.h"

#include "NvmeStatus.h"

#include <windows.h>
#include <winioctl.h>

namespace TLXX::Win {

static_assert(IOCTL_STORAGE_GET_DEVICE_NUMBER == 0x2D1080);
static_assert(sizeof(STORAGE_DEVICE_NUMBER) == 12);

CDeviceFile::CDeviceFile(const std::string& path, std::uint32_t access)
    : m_File(CreateFileA(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                         FILE_ATTRIBUTE_NORMAL, nullptr)),
      m_Status(m_File.Valid() ? STATUS_SUCCESS : GetLastError())
{}

std::optional<std::uint32_t> CDeviceFile::DiskNumber() const
{
    STORAGE_DEVICE_NUMBER number{};
    DWORD returned = 0;
    if (DeviceIoControl(Get(), IOCTL_STORAGE_GET_DEVICE_NUMBER, nullptr, 0, &number, sizeof number, &returned,
                        nullptr) == FALSE ||
        returned != sizeof number)
        return std::nullopt;
    return number.DeviceNumber;
}

} // namespace TLXX::Win
