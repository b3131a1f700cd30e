#include "Attribute.h"
#include "SysfsName.h"

#include <TLXX/Linux/Sysfs.h>

#include <algorithm>
#include <system_error>
#include <tuple>

namespace TLXX::Linux {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t BROADCAST_NAMESPACE = 0xFFFFFFFF;

/** The names of the directories in `folder`, links to directories included. */
std::vector<std::string> subdirectories(const fs::path& folder)
{
    std::vector<std::string> names;
    std::error_code error;
    // A failed increment leaves the iterator at its end, and a controller that goes away ends its own
    // listing.
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        std::error_code ignored;
        if (entry->is_directory(ignored))
            names.push_back(entry->path().filename().string());
    }
    return names;
}

/** The name of what a link points to; empty if there is no such link. */
std::string linkTarget(const fs::path& link)
{
    std::error_code error;
    return fs::read_symlink(link, error).filename().string();
}

std::string driverName(const fs::path& folder, const std::string& transport)
{
    if (std::string driver = linkTarget(folder / "device" / "driver"); !driver.empty())
        return driver;
    return transport.empty() || transport == "pcie" ? std::string() : "nvme_" + transport;
}

/** A namespace's identifier: the number in its name counts nodes, which need not be the same. */
std::uint32_t namespaceIdentifier(const fs::path& folder, const CNamespaceName& name)
{
    const auto identifier = decimal(readAttribute(folder / "nsid"));
    const bool usable = identifier && *identifier != 0 && *identifier != BROADCAST_NAMESPACE;
    return usable ? *identifier : name.m_Number;
}

/**
 * The path that stands for a namespace of `controller`. A shared head is the disk of the controller that it
 * is named after; its other controllers take the name of their own path to it, so that no two share a name.
 */
std::string devicePath(const CController& controller, const std::string& node, const CNamespaceName& name)
{
    if (name.m_Path && name.m_Head == controller.m_Instance)
        return "/dev/" + controller.m_Name + "n" + std::to_string(name.m_Number);
    return "/dev/" + node;
}

void findNamespace(const fs::path& folder, CController& controller)
{
    for (const std::string& node : subdirectories(folder)) {
        const auto name = namespaceName(node);
        if (!name || (name->m_Path && *name->m_Path != controller.m_Instance))
            continue;
        const std::uint32_t identifier = namespaceIdentifier(folder / node, *name);
        std::string path = devicePath(controller, node, *name);
        const bool first = controller.m_DeviceName.empty();
        if (first ||
            std::tie(identifier, path) < std::tie(controller.m_NamespaceId, controller.m_DeviceName)) {
            controller.m_NamespaceId = identifier;
            controller.m_DeviceName = std::move(path);
        }
    }
}

CController readController(const fs::path& folder, const std::string& name, std::uint32_t instance)
{
    CController controller;
    controller.m_Instance = instance;
    controller.m_Name = name;
    controller.m_Transport = readAttribute(folder / "transport");
    controller.m_State = readAttribute(folder / "state");
    controller.m_Driver = driverName(folder, controller.m_Transport);
    if (controller.m_Transport == "pcie")
        controller.m_Location = CPciLocation::Parse(readAttribute(folder / "address"));
    findNamespace(folder, controller);
    return controller;
}

} // namespace

std::vector<CController> listControllers(const std::filesystem::path& root)
{
    const fs::path classFolder = root / "class" / "nvme";
    std::vector<CController> controllers;
    for (const std::string& name : subdirectories(classFolder)) {
        if (const auto instance = controllerInstance(name))
            controllers.push_back(readController(classFolder / name, name, *instance));
    }
    std::sort(controllers.begin(), controllers.end(), [](const CController& left, const CController& right) {
        return left.m_Instance < right.m_Instance;
    });
    return controllers;
}

} // namespace TLXX::Linux
