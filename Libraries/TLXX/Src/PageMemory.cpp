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
    m_Instances[path] = instance;
    Bytes& kept = m_Drives[instance].m_Pages[page];
    // Most pages never change, and to compare costs less than to copy.
    if (!kept || !std::equal(kept->begin(), kept->end(), bytes.begin(), bytes.end()))
        kept = std::make_shared<const std::vector<std::uint8_t>>(bytes.begin(), bytes.end());
}

bool CPageMemory::Recall(const std::string& instance, Page page, std::span<std::uint8_t> bytes) const
{
    const std::scoped_lock guard(m_Lock);
    const Bytes kept = Find(instance, page);
    if (!kept || kept->size() != bytes.size())
        return false;
    std::copy(kept->begin(), kept->end(), bytes.begin());
    return true;
}

CPageMemory::Bytes CPageMemory::PageAt(const std::string& path, Page page) const
{
    const std::scoped_lock guard(m_Lock);
    const auto instance = m_Instances.find(path);
    return instance == m_Instances.end() ? nullptr : Find(instance->second, page);
}

CPageMemory::Bytes CPageMemory::Find(const std::string& instance, Page page) const
{
    const auto drive = m_Drives.find(instance);
    if (drive == m_Drives.end())
        return nullptr;
    const auto kept = drive->second.m_Pages.find(page);
    return kept == drive->second.m_Pages.end() ? nullptr : kept->second;
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
