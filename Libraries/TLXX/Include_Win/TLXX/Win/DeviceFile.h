#pragma once

#include <TLX/Thread.h>
#include <TLX/Win/UniqueHandle.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include <windows.h>
#include <winioctl.h>

namespace TLXX::Win {

/**
 * An open device. A failing device may block both its opening and its queries, so
 * `TLX::Threading::CThread::Cancel` can end the thread in either. Inline, because the plug-in asks the system
 * itself.
 */
class CDeviceFile
{
public:
    /** `access` is 0, which allows questions about the device only, or GENERIC_READ. */
    CDeviceFile(const std::string& path, std::uint32_t access)
        : m_Status(TLX::Threading::interruptibly([this, &path, access] {
              m_File =
                  TLX::Win::CFileHandle(CreateFileA(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
              return static_cast<int>(m_File.Valid() ? ERROR_SUCCESS : GetLastError());
          }))
    {}

    /** 0, or the reason why it could not be opened. */
    std::uint32_t Status() const { return m_Status; }

    /** Sends a control code with `input`; writes `returned` bytes to `output`. Returns 0 or the error. */
    std::uint32_t Control(std::uint32_t code, std::span<std::uint8_t> input, std::span<std::uint8_t> output,
                          DWORD& returned) const
    {
        return TLX::Threading::interruptibly([&] {
            const BOOL done =
                DeviceIoControl(m_File.Get(), code, input.data(), static_cast<DWORD>(input.size()),
                                output.data(), static_cast<DWORD>(output.size()), &returned, nullptr);
            return static_cast<int>(done != FALSE ? ERROR_SUCCESS : GetLastError());
        });
    }

    /** The number of the disk; none when it is no disk or could not be opened. */
    std::optional<std::uint32_t> DiskNumber() const
    {
        static_assert(IOCTL_STORAGE_GET_DEVICE_NUMBER == 0x2D1080);
        static_assert(sizeof(STORAGE_DEVICE_NUMBER) == 12);
        static_assert(offsetof(STORAGE_DEVICE_NUMBER, DeviceNumber) == 4);
        if (!m_File.Valid())
            return std::nullopt;
        STORAGE_DEVICE_NUMBER number{};
        DWORD returned = 0;
        const std::span room(reinterpret_cast<std::uint8_t*>(&number), sizeof number);
        if (Control(IOCTL_STORAGE_GET_DEVICE_NUMBER, {}, room, returned) != ERROR_SUCCESS)
            return std::nullopt;
        return number.DeviceNumber;
    }

private:
    TLX::Win::CFileHandle m_File;
    std::uint32_t m_Status;
};

} // namespace TLXX::Win
