#include "Records/DeviceTree.h"

#include "Ostrel_Win/DiskInterfaces.h"
#include "Records/Text.h"

#include <TLXX/Win/DeviceNodes.h>

#include <array>
#include <cstring>
#include <functional>
#include <optional>
#include <string_view>
#include <utility>

#include <windows.h>
#include <cfgmgr32.h>

namespace NAMESPACE_Ostrel {
namespace {

/** Takes the name of a disk, the name of its controller's service, and the disk's instance identifier. */
using DiskFound = std::function<void(std::string, std::string, std::string)>;

constexpr std::string_view CONTROLLER_SERVICE = "stornvme";
constexpr std::string_view DISK_SERVICE = "disk";

constexpr std::size_t SERVICE_SIZE = 200;
constexpr std::size_t INSTANCE_SIZE = 2048;

/** The service of `node`, if its name equals `expected` without regard to case. */
std::optional<std::string> matchingService(DEVINST node, std::string_view expected)
{
    std::array<char, SERVICE_SIZE> buffer{};
    ULONG length = buffer.size();
    if (CM_Get_DevNode_Registry_PropertyA(node, CM_DRP_SERVICE, nullptr, buffer.data(), &length, 0) !=
        CR_SUCCESS)
        return std::nullopt;
    std::string service(buffer.data(), strnlen(buffer.data(), buffer.size()));
    return equalIgnoringCase(service, expected) ? std::optional(std::move(service)) : std::nullopt;
}

/** Goes on to the next node of the walk: child, sibling, or the sibling of the nearest ancestor that has one.
 */
bool advance(DEVINST& node)
{
    DEVINST next = 0;
    if (CM_Get_Child(&next, node, 0) == CR_SUCCESS) {
        node = next;
        return true;
    }
    while (CM_Get_Sibling(&next, node, 0) != CR_SUCCESS) {
        if (CM_Get_Parent(&next, node, 0) != CR_SUCCESS)
            return false;
        node = next;
    }
    node = next;
    return true;
}

/** Adds the disk below a controller. Only the first child counts, even when there are others. */
void enumerateNVMeDisks(DEVINST controller, const std::string& service, const DiskFound& add)
{
    DEVINST disk = 0;
    if (CM_Get_Child(&disk, controller, 0) != CR_SUCCESS || !matchingService(disk, DISK_SERVICE))
        return;
    std::array<char, INSTANCE_SIZE> instance{};
    if (CM_Get_Device_IDA(disk, instance.data(), instance.size(), 0) != CR_SUCCESS)
        return;
    forEachDiskInterface(instance.data(), [&](std::uint32_t number) {
        add(R"(\\.\PhysicalDrive)" + std::to_string(number), service, instance.data());
    });
}

} // namespace

std::vector<TLXX::CDeviceEntry> walkDeviceTree()
{
    std::vector<TLXX::CDeviceEntry> entries;
    std::vector<TLXX::Win::CFoundDisk> disks;
    DEVINST node = 0;
    bool more = CM_Locate_DevNodeA(&node, nullptr, CM_LOCATE_DEVNODE_NORMAL) == CR_SUCCESS;
    for (; more; more = advance(node)) {
        if (const auto service = matchingService(node, CONTROLLER_SERVICE)) {
            enumerateNVMeDisks(node, *service,
                               [&](std::string device, std::string driver, std::string instance) {
                                   // Two interfaces of one node may lead to two disks.
                                   instance.append(" ").append(device);
                                   disks.push_back({node, device, std::move(instance)});
                                   entries.push_back({std::move(device), std::move(driver)});
                               });
        }
    }
    TLXX::Win::rememberEnumeration(std::move(disks));
    return entries;
}

} // namespace NAMESPACE_Ostrel
