#include "Support/TemporaryFolder.h"

#include <fstream>
#include <random>
#include <stdexcept>
#include <string>
#include <system_error>

namespace TestSupport {

CTemporaryFolder::CTemporaryFolder()
{
    std::random_device random;
    do {
        m_Path = std::filesystem::temp_directory_path() / ("ostrel-test-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(m_Path));
}

CTemporaryFolder::~CTemporaryFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_Path, ignored);
}

void CTemporaryFolder::Write(std::string_view name, std::string_view content) const
{
    std::ofstream file(m_Path / name, std::ios::binary);
    file << content;
    if (!file.flush())
        throw std::runtime_error("cannot write " + (m_Path / name).string());
}

} // namespace TestSupport
