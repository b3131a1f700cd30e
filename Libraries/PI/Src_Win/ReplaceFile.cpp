#include "ReplaceFile.h"

#include <TLX/Win/UniqueHandle.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <windows.h>

namespace PI {
namespace {

/** The permissions of an existing file; empty when there is none. */
std::vector<std::byte> accessRules(const std::filesystem::path& file)
{
    DWORD size = 0;
    GetFileSecurityW(file.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::vector<std::byte> rules(size);
    if (size == 0 ||
        GetFileSecurityW(file.c_str(), DACL_SECURITY_INFORMATION, rules.data(), size, &size) == FALSE)
        return {};
    return rules;
}

/** A temporary file beside its target; removed again unless it replaces the target. */
class CTemporaryFile
{
public:
    explicit CTemporaryFile(const std::filesystem::path& target)
    {
        std::vector<std::byte> rules = accessRules(target);
        SECURITY_ATTRIBUTES attributes{sizeof attributes, rules.empty() ? nullptr : rules.data(), FALSE};
        std::random_device random;
        do {
            m_Name = target.native() + L'.' + std::to_wstring(random());
            m_File = TLX::Win::CFileHandle(CreateFileW(m_Name.c_str(), GENERIC_WRITE, 0, &attributes,
                                                       CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
        } while (!m_File.Valid() && GetLastError() == ERROR_FILE_EXISTS);
        m_IsMine = m_File.Valid();
    }
    ~CTemporaryFile()
    {
        Close();
        if (m_IsMine)
            DeleteFileW(m_Name.c_str());
    }
    CTemporaryFile(const CTemporaryFile&) = delete;
    CTemporaryFile& operator=(const CTemporaryFile&) = delete;

    bool Valid() const { return m_File.Valid(); }

    bool Write(std::string_view content) const
    {
        while (!content.empty()) {
            const auto length =
                static_cast<DWORD>(std::min<std::size_t>(content.size(), std::numeric_limits<DWORD>::max()));
            DWORD written = 0;
            if (WriteFile(m_File.Get(), content.data(), length, &written, nullptr) == FALSE)
                return false;
            content.remove_prefix(written);
        }
        return FlushFileBuffers(m_File.Get()) != FALSE;
    }

    bool TakePlaceOf(const std::filesystem::path& target)
    {
        Close();
        m_IsMine = MoveFileExW(m_Name.c_str(), target.c_str(),
                               MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) == FALSE;
        return !m_IsMine;
    }

private:
    void Close() { m_File = TLX::Win::CFileHandle(); }

    std::wstring m_Name;
    TLX::Win::CFileHandle m_File;
    bool m_IsMine = false; ///< this object has to remove the file
};

} // namespace

bool replaceFile(const std::filesystem::path& path, std::string_view content)
{
    CTemporaryFile file(path);
    return file.Valid() && file.Write(content) && file.TakePlaceOf(path);
}

} // namespace PI
