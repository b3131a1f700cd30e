#include "DeviceInstance.h"
#include "PageMemory.h"
#include "Platform.h"

#include <TLXX/Win/DeviceNodes.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <mutex>
#include <utility>

#include <windows.h>
#include <cfgmgr32.h>

namespace TLXX {
namespace {

using Win::DeviceNode;

struct CEnumeration
{
    std::mutex m_Lock;
    std::vector<Win::CFoundDisk> m_Disks;
};

// Never destroyed, because a query may still run when the process exits.
CEnumeration& lastEnumeration()
{
    static auto* const instance = new CEnumeration;
    return *instance;
}

void appendTree(DeviceNode node, std::vector<DeviceNode>& nodes)
{
    nodes.push_back(node);
    DEVINST child = 0;
    for (CONFIGRET result = CM_Get_Child(&child, node, 0); result == CR_SUCCESS;
         result = CM_Get_Sibling(&child, child, 0))
        appendTree(child, nodes);
}

/** The bytes of a property; none when it is missing or larger than any property that is read here. */
std::vector<char> propertyOf(DeviceNode node, std::uint32_t property)
{
    std::array<char, 4096> buffer{};
    ULONG length = buffer.size();
    if (CM_Get_DevNode_Registry_PropertyA(node, property, nullptr, buffer.data(), &length, 0) != CR_SUCCESS)
        return {};
    return {buffer.begin(), buffer.begin() + std::min<std::size_t>(length, buffer.size())};
}

std::optional<std::uint32_t> numberOf(DeviceNode node, std::uint32_t property)
{
    const std::vector<char> bytes = propertyOf(node, property);
    std::uint32_t number = 0;
    if (bytes.size() != sizeof number)
        return std::nullopt;
    std::memcpy(&number, bytes.data(), sizeof number);
    return number;
}

} // namespace

void Win::rememberEnumeration(std::vector<CFoundDisk> disks)
{
    std::vector<std::string> instances;
    instances.reserve(disks.size());
    for (const CFoundDisk& disk : disks)
        instances.push_back(disk.m_Instance);
    platformMemory().Retain(instances);
    const std::scoped_lock guard(lastEnumeration().m_Lock);
    lastEnumeration().m_Disks = std::move(disks);
}

std::string Win::deviceInstance(const std::string& path)
{
    const std::scoped_lock guard(lastEnumeration().m_Lock);
    const auto& disks = lastEnumeration().m_Disks;
    const auto found = std::find_if(disks.begin(), disks.end(),
                                    [&](const CFoundDisk& disk) { return disk.m_DeviceName == path; });
    return found == disks.end() ? std::string() : found->m_Instance;
}

std::vector<DeviceNode> Win::deviceNodes()
{
    std::vector<DeviceNode> nodes;
    DEVINST root = 0;
    if (CM_Locate_DevNodeA(&root, nullptr, CM_LOCATE_DEVNODE_NORMAL) == CR_SUCCESS)
        appendTree(root, nodes);
    return nodes;
}

std::vector<std::string> Win::nodeTexts(DeviceNode node, std::uint32_t property)
{
    const std::vector<char> bytes = propertyOf(node, property);
    std::vector<std::string> texts;
    for (auto begin = bytes.begin(); begin != bytes.end() && *begin != '\0';) {
        const auto end = std::find(begin, bytes.end(), '\0');
        texts.emplace_back(begin, end);
        begin = end == bytes.end() ? end : end + 1;
    }
    return texts;
}

std::string Win::nodeService(DeviceNode node)
{
    const std::vector<std::string> texts = nodeTexts(node, CM_DRP_SERVICE);
    return texts.empty() ? std::string() : texts.front();
}

std::optional<CPciLocation> Win::nodeLocation(DeviceNode node)
{
    const auto bus = numberOf(node, CM_DRP_BUSNUMBER);
    const auto address = numberOf(node, CM_DRP_ADDRESS);
    if (!bus || !address)
        return std::nullopt;
    // Windows has the PCI bus in the lowest byte of a number and the segment in the two bytes above it.
    // Device and function are the two halves of the address. A larger value does not come from the PCI bus
    // driver.
    const std::uint32_t device = *address >> 16U;
    const std::uint32_t function = *address & 0xFFFFU;
    if (*bus > 0xFFFFFFU || device > 0x1F || function > 7)
        return std::nullopt;
    return CPciLocation{static_cast<std::int32_t>(*bus >> 8U), static_cast<std::int32_t>(*bus & 0xFFU),
                        static_cast<std::int32_t>(device), static_cast<std::int32_t>(function)};
}

std::string Platform::instance(const std::string& path)
{
    return Win::deviceInstance(path);
}

std::optional<CPciLocation> Platform::location(std::uint32_t number)
{
    DeviceNode node = 0;
    {
        const std::scoped_lock guard(lastEnumeration().m_Lock);
        const auto& disks = lastEnumeration().m_Disks;
        if (number == 0 || number > disks.size())
            return std::nullopt;
        node = disks[number - 1].m_Controller;
    }
    return Win::nodeLocation(node);
}

} // namespace TLXX
