#include "Base/Platform.h"

#include <string>
#include <system_error>
#include <utility>

#include <windows.h>

namespace Host::Platform {

struct LockFile::Native
{
    explicit Native(std::filesystem::path file) : m_File(std::move(file)) {}
    ~Native()
    {
        if (m_Handle != INVALID_HANDLE_VALUE)
            CloseHandle(m_Handle);
    }
    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;

    const std::filesystem::path m_File;
    HANDLE m_Handle = INVALID_HANDLE_VALUE;
};

LockFile::LockFile(const std::filesystem::path& file) : m_Native(std::make_unique<Native>(file)) {}
LockFile::~LockFile() = default;

bool LockFile::take()
{
    // Others may read the file. They cannot open it for writing or delete it.
    m_Native->m_Handle = CreateFileW(m_Native->m_File.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                     CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    // Only its owner may write to another user's file. Opening it for reading still tells whether the owner
    // holds it.
    if (m_Native->m_Handle == INVALID_HANDLE_VALUE && GetLastError() == ERROR_ACCESS_DENIED)
        m_Native->m_Handle = CreateFileW(m_Native->m_File.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                         OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (m_Native->m_Handle == INVALID_HANDLE_VALUE) {
        const DWORD error = GetLastError();
        if (error == ERROR_SHARING_VIOLATION)
            return false;
        throw std::system_error(static_cast<int>(error), std::system_category(), m_Native->m_File.string());
    }
    const std::string identifier = std::to_string(GetCurrentProcessId()) + "\r\n";
    DWORD written = 0;
    WriteFile(m_Native->m_Handle, identifier.data(), static_cast<DWORD>(identifier.size()), &written,
              nullptr);
    return true;
}

} // namespace Host::Platform
