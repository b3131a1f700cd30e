#pragma once

#include <filesystem>
#include <string_view>

namespace TestSupport {

/** A folder of its own for one test; gone with everything in it afterwards. */
class CTemporaryFolder
{
public:
    CTemporaryFolder();
    ~CTemporaryFolder();
    CTemporaryFolder(const CTemporaryFolder&) = delete;
    CTemporaryFolder& operator=(const CTemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return m_Path; }

    /** Writes `content` into the file `name` of the folder. */
    void Write(std::string_view name, std::string_view content) const;

private:
    std::filesystem::path m_Path;
};

} // namespace TestSupport
