#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace TLXX::Linux {

/**
 * The controllers and disks that sysfs names, each with the number of its node there. The kernel never uses
 * such a number twice, so a controller or disk that went and came back, or another one under its name, makes
 * a difference.
 */
class CNvmeNames
{
public:
    /** The names below `root`; nothing when that is no sysfs, whose nodes' numbers would tell nothing. */
    static std::optional<CNvmeNames> Read(const std::filesystem::path& root);

    /** Whether a disk goes by this path, such as "/dev/nvme0n1". */
    bool HasDisk(std::string_view path) const;

    friend bool operator==(const CNvmeNames&, const CNvmeNames&) = default;

private:
    struct CName
    {
        std::uint64_t m_Node = 0;
        std::string m_Text;

        friend bool operator==(const CName&, const CName&) = default;
    };

    static bool Add(const std::string& path, std::vector<CName>& names);

    std::vector<CName> m_Controllers;
    std::vector<CName> m_Disks;
};

} // namespace TLXX::Linux
