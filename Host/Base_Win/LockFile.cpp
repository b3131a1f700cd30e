#include "Base/Platform.h"

#include <TLX/Win/UniqueHandle.h>

#include <string>
#include <system_error>
#include <utility>

#include <windows.h>

namespace Host::Platform {

struct LockFile::Native
{
    explicit Native(std::filesystem::path file) : m_File(std::move(file)) {}

    const std::filesystem::path m_File;
    TLX::Win::CFileHandle m_Handle;
};

LockFile::LockFile(const std::filesystem::path& file) : m_Native(std::make_unique<Native>(file)) {}
LockFile::~LockFile() = default;

bool LockFile::take()
{
    // Others may read the file. They cannot open it for writing or delete it.
    const auto open = [this](DWORD right, DWORD manner) {
        m_Native->m_Handle =
            TLX::Win::CFileHandle(CreateFileW(m_Native->m_File.c_str(), right, FILE_SHARE_READ, nullptr,
                                              manner, FILE_ATTRIBUTE_NORMAL, nullptr));
        return m_Native->m_Handle.Valid();
    };
    bool opened = open(GENERIC_WRITE, CREATE_ALWAYS);
    // Only its owner may write to another user's file. Opening it for reading still tells whether the owner
    // holds it.
    if (!opened && GetLastError() == ERROR_ACCESS_DENIED)
        opened = open(GENERIC_READ, OPEN_EXISTING);
    if (!opened) {
        const DWORD error = GetLastError();
        if (error == ERROR_SHARING_VIOLATION)
            return false;
        throw std::system_error(static_cast<int>(error), std::system_category(), m_Native->m_File.string());
    }
    const std::string identifier = std::to_string(GetCurrentProcessId()) + "\r\n";
    DWORD written = 0;
    WriteFile(m_Native->m_Handle.Get(), identifier.data(), static_cast<DWORD>(identifier.size()), &written,
              nullptr);
    return true;
}

} // namespace Host::Platform
