#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace TestSupport {

/** A new folder for one test. It is removed with its content at the end. */
class CTemporaryFolder
{
public:
    CTemporaryFolder();
    ~CTemporaryFolder();
    CTemporaryFolder(const CTemporaryFolder&) = delete;
    CTemporaryFolder& operator=(const CTemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return m_Path; }

    /** Writes `content` into the file `name` of the folder and returns the file's path. */
    std::filesystem::path Write(std::string_view name, std::string_view content) const;

    /** The content of the file `name` of the folder; empty when there is no such file. */
    std::string Read(std::string_view name) const;

private:
    std::filesystem::path m_Path;
};

} // namespace TestSupport
