#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace TLXX::Linux {

/**
 * The controllers and disks in sysfs, each with the number of its node. The kernel never uses such a number
 * twice. So the numbers differ after a controller or disk went and came back, or another one took its name.
 */
class CNvmeNames
{
public:
    /**
     * The names below `root`; nothing when `root` is no sysfs, because then the nodes' numbers mean nothing.
     */
    static std::optional<CNvmeNames> Read(const std::filesystem::path& root);

    /** Whether a disk has this path, such as "/dev/nvme0n1". */
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
