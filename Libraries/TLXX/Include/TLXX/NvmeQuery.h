#pragma once

#include <TLXX/Export.h>
#include <TLXX/NvmeStructures.h>

#include <cstdint>
#include <optional>
#include <string>

// The only commands ever sent to a drive; nothing is ever written to one. Each takes the path of a disk as
// the enumeration gave it, blocks until the drive has answered, and returns a status: 0 when the whole block
// was transferred. On any other status the caller's block stays as it was. Safe from any thread.
namespace TLXX {

TLXX_EXPORT std::uint32_t NVMeStorageQueryPropertyIdentifyController(const std::string& path,
                                                                     NVME_IDENTIFY_CONTROLLER& controller);

TLXX_EXPORT std::uint32_t NVMeStorageQueryPropertyIdentifyNamespace(const std::string& path,
                                                                    NVME_IDENTIFY_NAMESPACE& name_space);

TLXX_EXPORT std::uint32_t
NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo(const std::string& path,
                                                  NVME_SMART_HEALTH_INFORMATION_LOG& log);

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

/** The status of the last query of this kind of `path`; none when there was none. */
TLXX_EXPORT std::optional<std::uint32_t> lastStatus(const std::string& path, EQuery query);

/** A status in words, such as "permission denied" or "the drive answered with status 0x2002". */
TLXX_EXPORT std::string statusText(std::uint32_t status);

/** Whether a status says that this user may not talk to the drive. */
TLXX_EXPORT bool isPermissionStatus(std::uint32_t status);

} // namespace TLXX
