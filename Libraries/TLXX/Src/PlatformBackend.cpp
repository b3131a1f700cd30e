#include "Platform.h"
#include "QuerySession.h"

#include <TLXX/DeviceBackend.h>

#include <utility>

namespace TLXX {
namespace {

class CPlatformBackend : public IDeviceBackend
{
public:
    std::vector<CDeviceEntry> Enumerate(const DeviceWalk& walk) override { return walk(); }

    std::uint32_t IdentifyController(const std::string& path, NVME_IDENTIFY_CONTROLLER& controller) override
    {
        return withDisk(path, [&](Platform::CDisk& disk) { return disk.IdentifyController(controller); });
    }

    std::uint32_t IdentifyNamespace(const std::string& path, NVME_IDENTIFY_NAMESPACE& name_space) override
    {
        return withDisk(path, [&](Platform::CDisk& disk) { return disk.IdentifyNamespace(name_space); });
    }

    std::uint32_t SmartHealthLog(const std::string& path, NVME_SMART_HEALTH_INFORMATION_LOG& log) override
    {
        return withDisk(path, [&](Platform::CDisk& disk) { return disk.SmartHealthLog(log); });
    }

    std::uint32_t VendorLogPage(const std::string& path, std::uint8_t logIdentifier,
                                TLXX::VendorLogPage& page) override
    {
        return withDisk(path, [&](Platform::CDisk& disk) { return disk.VendorLogPage(logIdentifier, page); });
    }

    std::string Instance(const std::string& path) override
    {
        // The drive that answers in a session is the one that was opened, whatever is at the path by now.
        CQuerySession::Native* const session = sessionOf(path);
        return session != nullptr && session->m_Disk ? session->m_Disk->Instance() : Platform::instance(path);
    }

    std::optional<CPciLocation> Location(std::uint32_t number) override { return Platform::location(number); }

    std::vector<CControllerState> ControllerStates() override { return Platform::controllerStates(); }

    std::string ModuleVersion(const std::string& driver) override { return Platform::moduleVersion(driver); }

    std::unique_ptr<IAnnouncements> Subscribe(std::function<void()> announce) override
    {
        return Platform::subscribe(std::move(announce));
    }
};

} // namespace

std::shared_ptr<IDeviceBackend> platformBackend()
{
    return std::make_shared<CPlatformBackend>();
}

} // namespace TLXX
