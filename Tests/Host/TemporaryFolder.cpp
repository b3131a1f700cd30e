#include "Host/TemporaryFolder.h"

#include <fstream>
#include <random>
#include <sstream>

namespace HostTest {

TemporaryFolder::TemporaryFolder()
{
    std::random_device random;
    do {
        std::ostringstream name;
        name << "ostrel-test-" << std::hex << random() << random();
        m_Path = std::filesystem::temp_directory_path() / name.str();
    } while (!std::filesystem::create_directory(m_Path));
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code error;
    std::filesystem::remove_all(m_Path, error);
}

std::filesystem::path TemporaryFolder::write(const std::string& name, const std::string& text) const
{
    const std::filesystem::path file = m_Path / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary | std::ios::trunc) << text;
    return file;
}

} // namespace HostTest
