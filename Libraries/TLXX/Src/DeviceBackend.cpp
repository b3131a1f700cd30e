#include <TLXX/DeviceBackend.h>

#include <mutex>
#include <utility>

namespace TLXX {
namespace {

struct CRegistry
{
    std::mutex m_Lock;
    std::shared_ptr<IDeviceBackend> m_Backend;
};

// Never destroyed: a thread that hangs in a drive may outlive the static objects of a process that exits.
CRegistry& registry()
{
    static auto* const instance = new CRegistry;
    return *instance;
}

} // namespace

IAnnouncements::~IAnnouncements() = default;
IDeviceBackend::~IDeviceBackend() = default;

std::unique_ptr<IAnnouncements> IDeviceBackend::Subscribe(std::function<void()> /*announce*/)
{
    return nullptr;
}

std::shared_ptr<IDeviceBackend> setDeviceBackend(std::shared_ptr<IDeviceBackend> backend)
{
    const std::scoped_lock guard(registry().m_Lock);
    return std::exchange(registry().m_Backend, std::move(backend));
}

std::shared_ptr<IDeviceBackend> deviceBackend()
{
    const std::scoped_lock guard(registry().m_Lock);
    return registry().m_Backend;
}

} // namespace TLXX
