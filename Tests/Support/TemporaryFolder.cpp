#include "Support/TemporaryFolder.h"

#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
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

std::filesystem::path CTemporaryFolder::Write(std::string_view name, std::string_view content) const
{
    std::filesystem::path path = m_Path / name;
    std::ofstream file(path, std::ios::binary);
    file << content;
    if (!file.flush())
        throw std::runtime_error("cannot write " + path.string());
    return path;
}

std::string CTemporaryFolder::Read(std::string_view name) const
{
    std::ifstream file(m_Path / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace TestSupport
