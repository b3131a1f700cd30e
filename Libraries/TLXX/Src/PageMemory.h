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
 * The last good pages of drives, so that one failed query changes nothing. The device instance identifies a
 * drive; for an empty, unknown instance nothing is kept. Safe from any thread.
 */
class CPageMemory
{
public:
    /** Identifies a page: the kind of query and, for a vendor log, its identifier. */
    using Page = std::pair<EQuery, std::uint8_t>;

    /** The bytes of a page, shared by everyone who reads them. */
    using Bytes = std::shared_ptr<const std::vector<std::uint8_t>>;

    /** Keeps what the drive at `path` answered. */
    void Keep(const std::string& path, const std::string& instance, Page page,
              std::span<const std::uint8_t> bytes);

    /**
     * Copies the last good page into `bytes`, which has the page's size. Returns false and writes nothing
     * when there is none.
     */
    bool Recall(const std::string& instance, Page page, std::span<std::uint8_t> bytes) const;

    /**
     * Called after the drive has identified itself. When its serial number differs from the former one, all
     * kept pages of the instance are forgotten.
     */
    void Identified(const std::string& instance, const std::string& serialNumber);

    /**
     * The last good page of the instance that was at `path` when a page was last kept there. Null when there
     * is none. It never changes: a new page takes its place.
     */
    Bytes PageAt(const std::string& path, Page page) const;

    /** Forgets every instance that is not in this list of an enumeration. */
    void Retain(const std::vector<std::string>& instances);

private:
    struct CDrive
    {
        std::optional<std::string> m_SerialNumber; ///< none: not reported yet
        std::map<Page, Bytes> m_Pages;
    };

    /** Null when there is none. Called with m_Lock held. */
    Bytes Find(const std::string& instance, Page page) const;

    mutable std::mutex m_Lock;
    std::unordered_map<std::string, CDrive> m_Drives;         // by instance
    std::unordered_map<std::string, std::string> m_Instances; // by path
};

/** The source of answers to queries, and the memory that belongs to it. */
struct CDeviceSource
{
    std::shared_ptr<IDeviceBackend> m_Backend; ///< null: the platform's own code
    std::shared_ptr<CPageMemory> m_Memory;     ///< never null
};
CDeviceSource deviceSource();

/** The memory of the platform's own drives. */
CPageMemory& platformMemory();

} // namespace TLXX
