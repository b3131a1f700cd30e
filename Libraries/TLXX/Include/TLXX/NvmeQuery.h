#pragma once

#include <TLXX/Export.h>
#include <TLXX/NvmeStructures.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

// These are the only commands that are sent to a drive; nothing is ever written to one. Each takes the path
// of a disk from the enumeration and blocks until the drive has answered. It returns a status, which is 0
// when the whole block was transferred. Safe from any thread. Throws `std::runtime_error` or `std::bad_alloc`
// when descriptors or memory run out before there is a status.
//
// A query that fails puts the last good answer of the same device instance into the caller's block. This
// holds for Identify Namespace, the health log and the vendor logs C5h and CAh. The answer is forgotten when
// Identify Controller shows another serial number, or when an enumeration no longer finds the drive. Any
// other query that fails, and any before the first good answer, leaves the block as it was.
namespace TLXX {

/** Identify, CNS 01h. */
TLXX_EXPORT std::uint32_t NVMeStorageQueryPropertyIdentifyController(const std::string& path,
                                                                     NVME_IDENTIFY_CONTROLLER& controller);

/** Identify, CNS 00h, of the disk's namespace. */
TLXX_EXPORT std::uint32_t NVMeStorageQueryPropertyIdentifyNamespace(const std::string& path,
                                                                    NVME_IDENTIFY_NAMESPACE& name_space);

/** Get Log Page 02h. A page of zeros only was never filled by the drive and counts as a failed query. */
TLXX_EXPORT std::uint32_t
NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo(const std::string& path,
                                                  NVME_SMART_HEALTH_INFORMATION_LOG& log);

/** Get Log Page `logIdentifier`. The maker of the drive defines its content. */
TLXX_EXPORT std::uint32_t NVMeStorageQueryPropertyGetVendorSpecificLogPage(const std::string& path,
                                                                           std::uint8_t logIdentifier,
                                                                           VendorLogPage& page);

/** The kinds of queries. */
enum class EQuery : std::uint8_t
{
    IdentifyController,
    IdentifyNamespace,
    SmartHealthLog,
    VendorLog, ///< whatever its log identifier
};

/**
 * While it lives, the queries of `path` on this thread share one opening of the disk. The first query opens
 * it; when that fails, the next one tries again. Without a session every query opens the disk. Sessions of
 * one thread may be nested; the innermost counts.
 */
class TLXX_EXPORT CQuerySession
{
public:
    /** Does not open the disk yet. */
    explicit CQuerySession(std::string path);
    ~CQuerySession();
    CQuerySession(const CQuerySession&) = delete;
    CQuerySession& operator=(const CQuerySession&) = delete;

    struct Native; ///< the platform's, known to the queries above

private:
    std::unique_ptr<Native> m_Native;
};

/** The status of the last query of this kind to `path`; none when there was none. Safe from any thread. */
TLXX_EXPORT std::optional<std::uint32_t> lastStatus(const std::string& path, EQuery query);

/** Keeps the status of a query that a back-end has made by itself, for `lastStatus`. Safe from any thread. */
TLXX_EXPORT void noteStatus(const std::string& path, EQuery query, std::uint32_t status);

/**
 * What the drive at `path` last told of its controller; null when it told nothing yet. Asks no drive. The
 * page never changes: what the drive tells next is another one. Safe from any thread.
 */
TLXX_EXPORT std::shared_ptr<const NVME_IDENTIFY_CONTROLLER> lastIdentifyController(const std::string& path);

/** The same of its health log. */
TLXX_EXPORT std::shared_ptr<const NVME_SMART_HEALTH_INFORMATION_LOG> lastHealthLog(const std::string& path);

/** The same of a vendor log: C5h or CAh, because no other one is kept. */
TLXX_EXPORT std::shared_ptr<const VendorLogPage> lastVendorLog(const std::string& path,
                                                               std::uint8_t logIdentifier);

/** The status of a query that got no answer in time. */
inline constexpr std::uint32_t STATUS_NO_ANSWER = 0x20003;

/** The status of a query to a drive that is no longer at its path. */
inline constexpr std::uint32_t STATUS_NO_DEVICE = 0x20004;

/** The status of a query for which descriptors, threads or memory ran out. */
inline constexpr std::uint32_t STATUS_NO_RESOURCES = 0x20005;

/** A status in words, such as "permission denied" or "the drive answered with status 0x2002". */
TLXX_EXPORT std::string statusText(std::uint32_t status);

/** Whether a status means that this user has no permission to query the drive. */
TLXX_EXPORT bool isPermissionStatus(std::uint32_t status);

} // namespace TLXX
