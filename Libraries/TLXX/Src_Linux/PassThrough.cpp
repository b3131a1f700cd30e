#include "AdminCommand.h"
#include "DeviceTable.h"
#include "Disk.h"
#include "NvmeStatus.h"

#include <TLXX/NvmeQuery.h>

#include <cerrno>
#include <span>
#include <type_traits>

namespace TLXX {
namespace {

constexpr std::uint8_t LOG_HEALTH = 0x02;

template<typename Block>
std::span<std::uint8_t> bytesOf(Block& block)
{
    static_assert(std::is_trivially_copyable_v<Block>);
    return {reinterpret_cast<std::uint8_t*>(&block), sizeof block};
}

/** Lets `send` fill a block. A command that fails leaves `target` as it was. */
template<typename Block, typename Send>
std::uint32_t fill(Block& target, Send send)
{
    alignas(std::uint64_t) Block fresh{};
    const std::uint32_t status = send(bytesOf(fresh));
    if (status == STATUS_SUCCESS)
        target = fresh;
    return status;
}

template<typename Block>
std::uint32_t identify(const Linux::CFileDescriptor& node, Linux::EIdentify structure,
                       std::uint32_t namespaceId, Block& target)
{
    const std::uint32_t status = fill(target, [&](std::span<std::uint8_t> block) {
        return Linux::sendIdentify(node, structure, namespaceId, block);
    });
    // The path may now lead to another disk than the one of the last enumeration.
    if (status != STATUS_SUCCESS)
        Linux::deviceTable().LookAnew();
    return status;
}

Linux::CFileDescriptor openOwner(const std::optional<Linux::CDiskOwner>& owner)
{
    if (!owner)
        return Linux::CFileDescriptor::Failed(ENODEV);
    Linux::CFileDescriptor node = Linux::openController(owner->m_Instance, owner->m_Node);
    if (node.Status() == STATUS_NO_DEVICE)
        Linux::deviceTable().LookAnew();
    return node;
}

} // namespace

Platform::CDisk::CDisk(const std::string& path) : CDisk(Linux::deviceTable().Owner(path)) {}

Platform::CDisk::CDisk(const std::optional<Linux::CDiskOwner>& owner)
    : m_Instance(owner ? owner->Instance() : std::string()),
      m_NamespaceId(owner ? owner->m_NamespaceId : 0),
      m_Node(openOwner(owner))
{}

std::uint32_t Platform::CDisk::IdentifyController(NVME_IDENTIFY_CONTROLLER& controller)
{
    return identify(m_Node, Linux::EIdentify::controller, 0, controller);
}

std::uint32_t Platform::CDisk::IdentifyNamespace(NVME_IDENTIFY_NAMESPACE& name_space)
{
    return identify(m_Node, Linux::EIdentify::nameSpace, m_NamespaceId, name_space);
}

std::uint32_t Platform::CDisk::SmartHealthLog(NVME_SMART_HEALTH_INFORMATION_LOG& log)
{
    return fill(log, [&](std::span<std::uint8_t> block) {
        return Linux::sendGetLogPage(m_Node, LOG_HEALTH, 0, Linux::ELength::exact, block);
    });
}

std::uint32_t Platform::CDisk::VendorLogPage(std::uint8_t logIdentifier, TLXX::VendorLogPage& page)
{
    return fill(page, [&](std::span<std::uint8_t> block) {
        return Linux::sendGetLogPage(m_Node, logIdentifier, 0, Linux::ELength::atMost, block);
    });
}

} // namespace TLXX
