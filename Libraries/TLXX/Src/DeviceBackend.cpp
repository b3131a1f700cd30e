#include "PageMemory.h"

#include <TLXX/DeviceBackend.h>

#include <mutex>
#include <utility>

namespace TLXX {
namespace {

struct CRegistry
{
    std::mutex m_Lock;
    std::shared_ptr<IDeviceBackend> m_Backend;
    std::shared_ptr<CPageMemory>
        m_Memory; ///< the last good pages of the back-end's drives; null without a back-end
};

// Never destroyed: a thread that waits for a drive may outlive the static objects when the process exits.
CRegistry& registry()
{
    static auto* const instance = new CRegistry;
    return *instance;
}

} // namespace

IAnnouncements::~IAnnouncements() = default;
IDeviceBackend::~IDeviceBackend() = default;

std::string IDeviceBackend::Instance(const std::string& path)
{
    return path;
}

std::vector<CControllerState> IDeviceBackend::ControllerStates()
{
    std::vector<CControllerState> states;
    std::uint32_t number = 0;
    for (const CDeviceEntry& entry : Enumerate([] { return std::vector<CDeviceEntry>(); })) {
        CControllerState state;
        state.m_Name = entry.m_DeviceName;
        state.m_DeviceName = entry.m_DeviceName;
        state.m_Driver = entry.m_Driver;
        state.m_Location = Location(++number);
        state.m_Transport = state.m_Location ? "pcie" : "";
        state.m_Namespaces = 1;
        state.m_AccessPath = entry.m_DeviceName;
        states.push_back(state);
    }
    return states;
}

std::unique_ptr<IAnnouncements>
IDeviceBackend::Subscribe(std::function<void()> /*announce*/) // NOLINT(performance-unnecessary-value-param)
{
    return nullptr;
}

std::shared_ptr<IDeviceBackend> setDeviceBackend(std::shared_ptr<IDeviceBackend> backend)
{
    auto memory = backend ? std::make_shared<CPageMemory>() : nullptr;
    const std::scoped_lock guard(registry().m_Lock);
    registry().m_Memory = std::move(memory);
    return std::exchange(registry().m_Backend, std::move(backend));
}

std::shared_ptr<IDeviceBackend> deviceBackend()
{
    return deviceSource().m_Backend;
}

std::vector<CDeviceEntry> enumerateBackend(const DeviceWalk& walk)
{
    const CDeviceSource source = deviceSource();
    if (!source.m_Backend)
        return walk();
    std::vector<CDeviceEntry> entries = source.m_Backend->Enumerate(walk);
    std::vector<std::string> instances;
    instances.reserve(entries.size());
    for (const CDeviceEntry& entry : entries)
        instances.push_back(source.m_Backend->Instance(entry.m_DeviceName));
    source.m_Memory->Retain(instances);
    return entries;
}

CDeviceSource deviceSource()
{
    const std::scoped_lock guard(registry().m_Lock);
    if (registry().m_Backend)
        return {registry().m_Backend, registry().m_Memory};
    // Nothing owns the platform's memory, and it is never destroyed.
    return {nullptr, std::shared_ptr<CPageMemory>(std::shared_ptr<void>(), &platformMemory())};
}

} // namespace TLXX
