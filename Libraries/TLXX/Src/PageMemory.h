#pragma once

#include <TLXX/DeviceBackend.h>
#include <TLXX/NvmeQuery.h>

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace TLXX {

/**
 * The last good pages of drives, so that one failed query changes nothing. Drives go by their device
 * instance; an empty instance is one that nobody knows, and nothing is kept of it. Safe from any thread.
 */
class CPageMemory
{
public:
    /** What a page is an answer to: the kind of query and, of a vendor log, its identifier. */
    using Page = std::pair<EQuery, std::uint8_t>;

    void Keep(const std::string& instance, Page page, std::span<const std::uint8_t> bytes);

    /** Puts the last good page into `bytes`, which has its size; false, with nothing written, without one. */
    bool Recall(const std::string& instance, Page page, std::span<std::uint8_t> bytes) const;

    /** The drive has said who it is; another one than before has none of the former's pages. */
    void Identified(const std::string& instance, const std::string& serialNumber);

    /** The instance that last said that it has this serial number; none when several did, or none. */
    std::optional<std::string> InstanceOf(const std::string& serialNumber) const;

    /** Forgets every instance but these, which an enumeration has found. */
    void Retain(const std::vector<std::string>& instances);

private:
    struct CDrive
    {
        std::optional<std::string> m_SerialNumber; ///< none: it has not said yet
        std::map<Page, std::vector<std::uint8_t>> m_Pages;
    };

    mutable std::mutex m_Lock;
    std::unordered_map<std::string, CDrive> m_Drives; // by instance
};

/** What answers queries now, and the memory that belongs to it. */
struct CDeviceSource
{
    std::shared_ptr<IDeviceBackend> m_Backend; ///< null: the platform's own code
    std::shared_ptr<CPageMemory> m_Memory;     ///< never null
};
CDeviceSource deviceSource();

/** The memory of the platform's own drives. */
CPageMemory& platformMemory();

} // namespace TLXX
