#pragma once

#include <TLXX/Diagnosis.h>
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

/** One disk that an enumeration found. */
struct CDeviceEntry
{
    std::string m_DeviceName; ///< path of the disk
    std::string m_Driver;     ///< name of the driver that serves its controller
};

/** How a plug-in itself finds the disks of the machine. */
using DeviceWalk = std::function<std::vector<CDeviceEntry>()>;

/** A subscription. Announcements continue while it lives. Its destructor waits for a running one. */
class TLXX_EXPORT IAnnouncements
{
public:
    IAnnouncements() = default;
    virtual ~IAnnouncements();
    IAnnouncements(const IAnnouncements&) = delete;
    IAnnouncements& operator=(const IAnnouncements&) = delete;
};

/**
 * The one place where something else can replace the machine's drives: a simulated fleet, or a test's
 * scripted controllers. Calls come from any thread. Queries keep to the contract of `NvmeQuery.h`.
 */
class TLXX_EXPORT IDeviceBackend
{
public:
    IDeviceBackend() = default;
    virtual ~IDeviceBackend();
    IDeviceBackend(const IDeviceBackend&) = delete;
    IDeviceBackend& operator=(const IDeviceBackend&) = delete;

    /**
     * The disks that exist now, in the order in which `Location` counts their controllers. A back-end that
     * shows the machine's disks, or some of them, calls `walk`: once, on this thread, before it returns.
     */
    virtual std::vector<CDeviceEntry> Enumerate(const DeviceWalk& walk) = 0;

    // The queries of `NvmeQuery.h` to the disk at `path`.
    virtual std::uint32_t IdentifyController(const std::string& path,
                                             NVME_IDENTIFY_CONTROLLER& controller) = 0;
    virtual std::uint32_t IdentifyNamespace(const std::string& path, NVME_IDENTIFY_NAMESPACE& name_space) = 0;
    virtual std::uint32_t SmartHealthLog(const std::string& path, NVME_SMART_HEALTH_INFORMATION_LOG& log) = 0;
    virtual std::uint32_t VendorLogPage(const std::string& path, std::uint8_t logIdentifier,
                                        TLXX::VendorLogPage& page) = 0;

    /**
     * Identifies the drive at `path`: two drives never have the same identifier, even when one replaces the
     * other at the same path. By default the path itself; then only the serial number distinguishes them.
     */
    virtual std::string Instance(const std::string& path);

    /**
     * The location of the `number`-th controller of the last enumeration, counted from 1; none if unknown.
     * Back-ends that several plug-ins use at once count in the last enumeration of the calling thread.
     */
    virtual std::optional<CPciLocation> Location(std::uint32_t number) = 0;

    /**
     * As `controllerStates`. Here it enumerates without a walk, and shows the disks that come of it; a
     * back-end that needs the walk for its disks overrides this.
     */
    virtual std::vector<CControllerState> ControllerStates();

    /** The version text of `driver`; empty if unknown. */
    virtual std::string ModuleVersion(const std::string& driver) = 0;

    /**
     * Makes the back-end call `announce`, from any thread, when drives may have come, gone or raised a
     * warning. `announce` returns at once and never throws. Null, as here, means that this back-end announces
     * nothing.
     */
    virtual std::unique_ptr<IAnnouncements> Subscribe(std::function<void()> announce);
};

/**
 * Replaces the machine by `backend`; null (the initial state) restores the machine. Returns the former
 * back-end.
 */
TLXX_EXPORT std::shared_ptr<IDeviceBackend> setDeviceBackend(std::shared_ptr<IDeviceBackend> backend);

/**
 * The disks of the back-end in use; those of `walk` without one. Forgets the kept pages of drives that are no
 * longer among them (see `NvmeQuery.h`), so callers must enumerate through this function.
 */
TLXX_EXPORT std::vector<CDeviceEntry> enumerateBackend(const DeviceWalk& walk);

/** The back-end in use; null means that the platform's own code answers. */
TLXX_EXPORT std::shared_ptr<IDeviceBackend> deviceBackend();

/** The platform's own code, for a back-end that asks the machine. Its enumeration is the walk. */
TLXX_EXPORT std::shared_ptr<IDeviceBackend> platformBackend();

} // namespace TLXX
