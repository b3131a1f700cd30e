#include "PageMemory.h"

#include <algorithm>
#include <unordered_set>

namespace TLXX {

void CPageMemory::Keep(const std::string& path, const std::string& instance, Page page,
                       std::span<const std::uint8_t> bytes)
{
    if (instance.empty())
        return;
    const std::scoped_lock guard(m_Lock);
    m_Drives[instance].m_Pages[page].assign(bytes.begin(), bytes.end());
    m_Instances[path] = instance;
}

bool CPageMemory::Recall(const std::string& instance, Page page, std::span<std::uint8_t> bytes) const
{
    const std::scoped_lock guard(m_Lock);
    const auto drive = m_Drives.find(instance);
    if (drive == m_Drives.end())
        return false;
    const auto kept = drive->second.m_Pages.find(page);
    if (kept == drive->second.m_Pages.end() || kept->second.size() != bytes.size())
        return false;
    std::copy(kept->second.begin(), kept->second.end(), bytes.begin());
    return true;
}

void CPageMemory::Identified(const std::string& instance, const std::string& serialNumber)
{
    if (instance.empty())
        return;
    const std::scoped_lock guard(m_Lock);
    CDrive& drive = m_Drives[instance];
    if (drive.m_SerialNumber && *drive.m_SerialNumber != serialNumber)
        drive.m_Pages.clear();
    drive.m_SerialNumber = serialNumber;
}

std::optional<std::string> CPageMemory::InstanceAt(const std::string& path) const
{
    const std::scoped_lock guard(m_Lock);
    const auto found = m_Instances.find(path);
    return found == m_Instances.end() ? std::nullopt : std::optional(found->second);
}

void CPageMemory::Retain(const std::vector<std::string>& instances)
{
    const std::unordered_set<std::string> present(instances.begin(), instances.end());
    const std::scoped_lock guard(m_Lock);
    std::erase_if(m_Drives, [&](const auto& drive) { return !present.contains(drive.first); });
    std::erase_if(m_Instances, [&](const auto& place) { return !present.contains(place.second); });
}

CPageMemory& platformMemory()
{
    // Never destroyed, because a query may still run when the process exits.
    static auto* const instance = new CPageMemory;
    return *instance;
}

} // namespace TLXX
