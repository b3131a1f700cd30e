#include "SysfsTree.h"

#include "Support/SourceTree.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace TLXXTest {

std::filesystem::path recordedSysfs(const std::string& name)
{
    std::filesystem::path root = TestSupport::sourceTree("Tests/Data/Sysfs") / name;
    if (!std::filesystem::is_directory(root))
        throw std::runtime_error("no recorded tree at " + root.string());
    return root;
}

CSysfsScope::CSysfsScope(const std::filesystem::path& root) : m_Former(TLXX::Linux::sysfsRoot())
{
    TLXX::Linux::setSysfsRoot(root);
}

CSysfsScope::~CSysfsScope()
{
    TLXX::Linux::setSysfsRoot(m_Former);
}

CTemporarySysfs::CTemporarySysfs()
{
    std::string name = (std::filesystem::temp_directory_path() / "TLXXTest-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr)
        throw std::runtime_error("cannot make " + name);
    m_Root = name;
}

CTemporarySysfs::~CTemporarySysfs()
{
    std::error_code error;
    std::filesystem::remove_all(m_Root, error);
}

void CTemporarySysfs::Attribute(const std::string& path, const std::string& value) const
{
    const std::filesystem::path file = m_Root / "class" / "nvme" / path;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << value << '\n';
}

void CTemporarySysfs::Controller(std::uint32_t instance, const std::string& address) const
{
    const std::string name = "nvme" + std::to_string(instance);
    Attribute(name + "/transport", "pcie");
    Attribute(name + "/address", address);
    Attribute(name + "/" + name + "n1/nsid", "1");
}

void CTemporarySysfs::Remove(std::uint32_t instance) const
{
    std::filesystem::remove_all(m_Root / "class" / "nvme" / ("nvme" + std::to_string(instance)));
}

void CTemporarySysfs::Empty(std::uint32_t instance) const
{
    for (const auto& entry :
         std::filesystem::directory_iterator(m_Root / "class" / "nvme" / ("nvme" + std::to_string(instance))))
        std::filesystem::remove_all(entry);
}

void CTemporarySysfs::Rename(const std::string& from, const std::string& to) const
{
    const std::filesystem::path folder = m_Root / "class" / "nvme";
    std::filesystem::rename(folder / from, folder / to);
}

} // namespace TLXXTest
