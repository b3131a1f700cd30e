#include "NvmeNames.h"

#include "Folder.h"

#include <algorithm>

#include <linux/magic.h>
#include <sys/vfs.h>

namespace TLXX::Linux {

bool CNvmeNames::Add(const std::string& path, std::vector<CName>& names)
{
    CFolder folder(path.c_str());
    struct statfs system = {};
    if (!folder.IsOpen() || ::fstatfs(folder.Get(), &system) != 0 || system.f_type != SYSFS_MAGIC)
        return false;
    while (const dirent* const entry = folder.Next()) {
        if (std::string_view(entry->d_name).starts_with("nvme"))
            names.push_back({entry->d_ino, entry->d_name});
    }
    return true;
}

std::optional<CNvmeNames> CNvmeNames::Read(const std::filesystem::path& root)
{
    CNvmeNames names;
    if (!Add(root.native() + "/class/nvme", names.m_Controllers) ||
        !Add(root.native() + "/class/block", names.m_Disks))
        return std::nullopt;
    return names;
}

bool CNvmeNames::HasDisk(std::string_view path) const
{
    return std::any_of(m_Disks.begin(), m_Disks.end(), [&](const CName& name) {
        return path.starts_with("/dev/") && path.substr(std::string_view("/dev/").size()) == name.m_Text;
    });
}

} // namespace TLXX::Linux
