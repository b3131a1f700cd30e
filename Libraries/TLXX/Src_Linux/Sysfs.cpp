#include "Attribute.h"
#include "Folder.h"
#include "SysfsName.h"

#include <TLXX/Linux/Sysfs.h>

#include <algorithm>
#include <set>
#include <tuple>

namespace TLXX::Linux {
namespace {

constexpr std::uint32_t BROADCAST_NAMESPACE = 0xFFFFFFFF;

std::string driverName(const CFolder& folder, const std::string& transport)
{
    if (std::string driver = linkTarget(folder, "device/driver"); !driver.empty())
        return driver;
    return transport.empty() || transport == "pcie" ? std::string() : "nvme_" + transport;
}

/** A namespace's identifier; none if the kernel does not tell it. */
std::optional<std::uint32_t> namespaceIdentifier(const CFolder& controller, const std::string& node)
{
    const auto identifier = decimal(readAttribute((node + "/nsid").c_str(), controller.Get()));
    const bool usable = identifier && *identifier != 0 && *identifier != BROADCAST_NAMESPACE;
    return usable ? identifier : std::nullopt;
}

/**
 * The disk path of a namespace of `controller`. Several controllers can share one disk, the head. It belongs
 * to the controller in its name. For the others the path has the name of their own way to the head, so that
 * no two disks have one path.
 */
std::string devicePath(const CController& controller, const std::string& node, const CNamespaceName& name)
{
    if (name.m_Path && name.m_Head == controller.m_Instance)
        return "/dev/" + controller.m_Name + "n" + std::to_string(name.m_Number);
    return "/dev/" + node;
}

void findNamespace(CFolder& folder, CController& controller)
{
    // With several paths to it, a namespace has one node for itself and one for each path.
    std::set<std::uint32_t> identifiers;
    while (const dirent* const entry = folder.Next()) {
        const auto name = namespaceName(entry->d_name);
        if (!name || (name->m_Path && *name->m_Path != controller.m_Instance) || !folder.IsDirectory(*entry))
            continue;
        const std::string node = entry->d_name;
        const auto told = namespaceIdentifier(folder, node);
        // The number in its name counts nodes and may differ.
        const std::uint32_t identifier = told.value_or(name->m_Number);
        identifiers.insert(identifier);
        std::string path = devicePath(controller, node, *name);
        const bool first = controller.m_DeviceName.empty();
        if (first ||
            std::tie(identifier, path) < std::tie(controller.m_NamespaceId, controller.m_DeviceName)) {
            controller.m_NamespaceId = identifier;
            controller.m_DeviceName = std::move(path);
        }
        if (!told)
            controller.m_Whole = false;
    }
    controller.m_Namespaces = static_cast<std::uint32_t>(identifiers.size());
}

CController readController(CFolder& folder, const dirent& entry, std::uint32_t instance)
{
    CController controller;
    controller.m_Instance = instance;
    controller.m_Node = entry.d_ino;
    controller.m_Name = entry.d_name;
    controller.m_Transport = readAttribute("transport", folder.Get());
    controller.m_State = readAttribute("state", folder.Get());
    controller.m_Driver = driverName(folder, controller.m_Transport);
    const bool isPcie = controller.m_Transport == "pcie";
    if (isPcie)
        controller.m_Location = CPciLocation::Parse(readAttribute("address", folder.Get()));
    controller.m_Whole =
        !controller.m_Transport.empty() && !controller.m_Driver.empty() && (!isPcie || controller.m_Location);
    findNamespace(folder, controller);
    return controller;
}

} // namespace

std::vector<CController> listControllers(const std::filesystem::path& root)
{
    std::vector<CController> controllers;
    CFolder classFolder((root / "class" / "nvme").c_str());
    while (const dirent* const entry = classFolder.Next()) {
        const auto instance = controllerInstance(entry->d_name);
        if (!instance)
            continue;
        CFolder folder(entry->d_name, classFolder.Get());
        if (folder.IsOpen())
            controllers.push_back(readController(folder, *entry, *instance));
    }
    std::sort(controllers.begin(), controllers.end(), [](const CController& left, const CController& right) {
        return left.m_Instance < right.m_Instance;
    });
    return controllers;
}

} // namespace TLXX::Linux
