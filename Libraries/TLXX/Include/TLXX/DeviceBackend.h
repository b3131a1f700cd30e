#pragma once

#include <TLXX/Export.h>
#include <TLXX/NvmeStructures.h>
#include <TLXX/PciLocation.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace TLXX {

/** One disk as an enumeration finds it. */
struct CDeviceEntry
{
    std::string m_DeviceName; ///< path of the disk
    std::string m_Driver;     ///< name of the driver that serves its controller
};

/** Announcements go on while it lives. Its destructor waits for one that is under way. */
class TLXX_EXPORT IAnnouncements
{
public:
    IAnnouncements() = default;
    virtual ~IAnnouncements();
    IAnnouncements(const IAnnouncements&) = delete;
    IAnnouncements& operator=(const IAnnouncements&) = delete;
};

/**
 * The one place where something else can stand for the machine's drives: a simulated fleet, a test's scripted
 * controllers. Calls come from any thread. Queries keep to the contract of `NvmeQuery.h`.
 */
class TLXX_EXPORT IDeviceBackend
{
public:
    IDeviceBackend() = default;
    virtual ~IDeviceBackend();
    IDeviceBackend(const IDeviceBackend&) = delete;
    IDeviceBackend& operator=(const IDeviceBackend&) = delete;

    /** The disks there are now, in the order in which `Location` counts their controllers. */
    virtual std::vector<CDeviceEntry> Enumerate() = 0;

    // What `NvmeQuery.h` asks of the disk at `path`.
    virtual std::uint32_t IdentifyController(const std::string& path,
                                             NVME_IDENTIFY_CONTROLLER& controller) = 0;
    virtual std::uint32_t IdentifyNamespace(const std::string& path, NVME_IDENTIFY_NAMESPACE& name_space) = 0;
    virtual std::uint32_t SmartHealthLog(const std::string& path, NVME_SMART_HEALTH_INFORMATION_LOG& log) = 0;
    virtual std::uint32_t VendorLogPage(const std::string& path, std::uint8_t logIdentifier,
                                        TLXX::VendorLogPage& page) = 0;

    /**
     * What tells the drive at `path` from another one that comes to the same path: two drives never have it
     * in common. By default the path itself; then only the serial numbers tell them apart.
     */
    virtual std::string Instance(const std::string& path);

    /** The location of the `number`-th controller of the last enumeration, counted from 1; none if unknown.
     */
    virtual std::optional<CPciLocation> Location(std::uint32_t number) = 0;

    /** The version text of `driver`; empty if unknown. */
    virtual std::string ModuleVersion(const std::string& driver) = 0;

    /**
     * Has `announce` called from any thread when drives may have come, gone or raised a warning. `announce`
     * returns at once and never throws. Null, as here: this back-end announces nothing.
     */
    virtual std::unique_ptr<IAnnouncements> Subscribe(std::function<void()> announce);
};

/** Puts `backend` in the machine's place, or the machine back (null, the initial state). Returns the former.
 */
TLXX_EXPORT std::shared_ptr<IDeviceBackend> setDeviceBackend(std::shared_ptr<IDeviceBackend> backend);

/**
 * The disks of what is in the machine's place; nothing without a back-end. Forgets what was kept of drives
 * that are no longer among them (see `NvmeQuery.h`), so callers enumerate by this function.
 */
TLXX_EXPORT std::optional<std::vector<CDeviceEntry>> enumerateBackend();

/** What stands in the machine's place; null: nothing, the platform's own code answers. */
TLXX_EXPORT std::shared_ptr<IDeviceBackend> deviceBackend();

} // namespace TLXX
