#pragma once

#include <TLX/Win/UniqueHandle.h>

#include <cstdint>
#include <optional>
#include <string>

namespace TLXX::Win {

/** An open device. */
class CDeviceFile
{
public:
    /** `access`: 0 to ask about the device alone, or GENERIC_READ. */
    CDeviceFile(const std::string& path, std::uint32_t access);

    /** 0, or why it could not be opened. */
    std::uint32_t Status() const { return m_Status; }
    HANDLE Get() const { return m_File.Get(); }

    /** The number of the disk; none when it is not one. */
    std::optional<std::uint32_t> DiskNumber() const;

private:
    TLX::Win::CFileHandle m_File;
    std::uint32_t m_Status;
};

} // namespace TLXX::Win
