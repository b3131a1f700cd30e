#include "DeviceTable.h"

#include "PageMemory.h"
#include "Platform.h"

#include <TLXX/Linux/Sysfs.h>
#include <TLXX/NvmeQuery.h>

#include <utility>

#include <sys/stat.h>

namespace TLXX::Linux {
namespace {

CDiskOwner ownerOf(const CController& controller)
{
    return {controller.m_Instance, controller.m_Node, controller.m_NamespaceId};
}

} // namespace

std::filesystem::path CDeviceTable::Root() const
{
    const std::scoped_lock guard(m_Lock);
    return m_Root;
}

std::string CDeviceTable::NodeOf(std::uint32_t instance) const
{
    const std::scoped_lock guard(m_Lock);
    return m_Root.native() + "/class/nvme/nvme" + std::to_string(instance);
}

void CDeviceTable::SetRoot(std::filesystem::path root)
{
    const std::scoped_lock guard(m_Lock);
    m_Root = std::move(root);
    Doubt();
    m_Owners.clear();
    m_Locations.clear();
    m_DriverVersions.clear();
    ++m_Walks;
    // Nodes of another tree may have the same numbers.
    platformMemory().Retain({});
}

std::vector<CDeviceEntry> CDeviceTable::Enumerate()
{
    const std::filesystem::path root = Root();
    std::optional<CNvmeNames> names = CNvmeNames::Read(root);
    std::uint64_t doubts = 0;
    {
        const std::scoped_lock guard(m_Lock);
        if (names && names == m_Names)
            return m_Entries;
        doubts = m_Doubts;
    }

    std::vector<CDeviceEntry> entries;
    std::unordered_map<std::string, CDiskOwner> owners;
    std::vector<std::optional<CPciLocation>> locations;
    std::vector<std::string> instances;
    bool reliable = names.has_value();
    for (const CController& controller : listControllers(root)) {
        // A controller that is incomplete now changes no name when it becomes complete. So these names are
        // not reliable.
        reliable = reliable && controller.m_Whole &&
                   (controller.m_DeviceName.empty() || names->HasDisk(controller.m_DeviceName));
        if (controller.m_Transport != "pcie" || controller.m_DeviceName.empty())
            continue;
        entries.push_back({controller.m_DeviceName, controller.m_Driver});
        owners.insert({controller.m_DeviceName, ownerOf(controller)});
        instances.push_back(ownerOf(controller).Instance());
        locations.push_back(controller.m_Location);
    }
    if (!reliable || CNvmeNames::Read(root) != names)
        names.reset();

    const std::scoped_lock guard(m_Lock);
    m_Names = doubts == m_Doubts ? std::move(names) : std::nullopt;
    m_Entries = entries;
    m_Owners = std::move(owners);
    m_Locations = std::move(locations);
    m_DriverVersions.clear();
    ++m_Walks;
    platformMemory().Retain(instances);
    return entries;
}

void CDeviceTable::LookAnew()
{
    const std::scoped_lock guard(m_Lock);
    Doubt();
}

void CDeviceTable::Doubt()
{
    m_Names.reset();
    ++m_Doubts;
}

std::optional<CDiskOwner> CDeviceTable::Owner(const std::string& path)
{
    {
        const std::scoped_lock guard(m_Lock);
        if (const auto found = m_Owners.find(path); found != m_Owners.end())
            return found->second;
    }
    for (const CController& controller : listControllers(Root())) {
        if (controller.m_DeviceName.empty() || controller.m_DeviceName != path)
            continue;
        const CDiskOwner owner = ownerOf(controller);
        const std::scoped_lock guard(m_Lock);
        m_Owners.insert({path, owner});
        return owner;
    }
    return std::nullopt;
}

std::string CDeviceTable::DriverVersion(const std::string& driver, std::string (*read)(const std::string&))
{
    std::uint64_t walks = 0;
    {
        const std::scoped_lock guard(m_Lock);
        if (const auto found = m_DriverVersions.find(driver); found != m_DriverVersions.end())
            return found->second;
        walks = m_Walks;
    }
    std::string version = read(driver);
    const std::scoped_lock guard(m_Lock);
    // Without reliable names the next enumeration must read the tree again.
    if (m_Names && walks == m_Walks)
        m_DriverVersions.insert({driver, version});
    return version;
}

std::optional<CPciLocation> CDeviceTable::Location(std::uint32_t number) const
{
    const std::scoped_lock guard(m_Lock);
    if (number == 0 || number > m_Locations.size())
        return std::nullopt;
    return m_Locations[number - 1];
}

CDeviceTable& deviceTable()
{
    // Never destroyed, because a query may still run when the process exits.
    static auto* const instance = new CDeviceTable;
    return *instance;
}

CFileDescriptor openController(std::uint32_t instance, std::uint64_t node)
{
    CFileDescriptor controller(controllerNode(instance).c_str());
    // While its node in sysfs exists, no other controller has this name. So the controller that was opened is
    // this one if the node still exists now. What is open belongs to one controller for good.
    struct stat status = {};
    const bool isThere =
        ::lstat(deviceTable().NodeOf(instance).c_str(), &status) == 0 && status.st_ino == node;
    return isThere ? std::move(controller) : CFileDescriptor::Failed(static_cast<int>(STATUS_NO_DEVICE));
}

std::filesystem::path sysfsRoot()
{
    return deviceTable().Root();
}

void setSysfsRoot(std::filesystem::path root)
{
    deviceTable().SetRoot(std::move(root));
}

std::vector<CDeviceEntry> enumerateDevices()
{
    return deviceTable().Enumerate();
}

} // namespace TLXX::Linux

std::string TLXX::Platform::instance(const std::string& path)
{
    const auto owner = Linux::deviceTable().Owner(path);
    return owner ? owner->Instance() : std::string();
}

std::optional<TLXX::CPciLocation> TLXX::Platform::location(std::uint32_t number)
{
    return Linux::deviceTable().Location(number);
}
