#pragma once

#include <filesystem>
#include <string>

namespace HostTest {

/** A folder of its own for each test; gone with the object. */
class TemporaryFolder
{
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return m_Path; }

    /** Writes a file below the folder and returns its path. */
    std::filesystem::path write(const std::string& name, const std::string& text) const;

private:
    std::filesystem::path m_Path;
};

} // namespace HostTest
