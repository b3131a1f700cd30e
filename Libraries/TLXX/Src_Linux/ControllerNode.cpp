#include "AdminCommand.h"
#include "DeviceTable.h"
#include "NvmeStatus.h"

#include <TLXX/Linux/ControllerNode.h>
#include <TLXX/Linux/DiskOwner.h>
#include <TLXX/NvmeQuery.h>
#include <TLXX/NvmeStructures.h>

#include <algorithm>
namespace TLXX::Linux {
namespace {

constexpr std::uint8_t LOG_HEALTH = 0x02;

/** The drive must fill the health log. Other pages may be shorter than what is asked for. */
ELength lengthOf(std::uint8_t logIdentifier, std::uint32_t offset, std::size_t size)
{
    const bool inside = offset + size <= sizeof(NVME_SMART_HEALTH_INFORMATION_LOG);
    return logIdentifier == LOG_HEALTH && inside ? ELength::exact : ELength::atMost;
}

} // namespace

struct CControllerNode::Native
{
    Native(std::uint32_t number, std::uint64_t node)
        : m_Number(number),
          m_SysfsNode(node),
          m_Node(IsThere() ? CFileDescriptor(controllerNode(number).c_str())
                           : CFileDescriptor::Failed(static_cast<int>(STATUS_NO_DEVICE)))
    {}

    bool IsThere() const { return controllerExists(m_Number, m_SysfsNode); }

    /** The result of `command`, if the controller is the one that is meant before and after it. */
    template<typename Command>
    std::uint32_t Checked(Command command, std::span<std::uint8_t> block) const
    {
        if (m_Node.Status() == STATUS_SUCCESS && !IsThere())
            return STATUS_NO_DEVICE;
        const std::uint32_t status = command(m_Node);
        if (status != STATUS_SUCCESS || IsThere())
            return status;
        std::fill(block.begin(), block.end(), std::uint8_t{0});
        return STATUS_NO_DEVICE;
    }

    const std::uint32_t m_Number;
    const std::uint64_t m_SysfsNode;
    // An open node belongs to one controller for good, whatever happens to the name.
    const CFileDescriptor m_Node;
};

CControllerNode::CControllerNode(std::uint32_t number, std::uint64_t node)
    : m_Native(std::make_unique<const Native>(number, node))
{}

CControllerNode::~CControllerNode() = default;

std::uint32_t CControllerNode::Status() const
{
    return m_Native->m_Node.Status();
}

std::uint32_t CControllerNode::IdentifyController(std::span<std::uint8_t> block) const
{
    return m_Native->Checked(
        [&](const CFileDescriptor& node) { return sendIdentify(node, EIdentify::controller, 0, block); },
        block);
}

std::uint32_t CControllerNode::IdentifyNamespace(std::uint32_t namespaceId,
                                                 std::span<std::uint8_t> block) const
{
    return m_Native->Checked(
        [&](const CFileDescriptor& node) {
            return sendIdentify(node, EIdentify::nameSpace, namespaceId, block);
        },
        block);
}

std::uint32_t CControllerNode::LogPage(std::uint8_t logIdentifier, std::uint32_t offset,
                                       std::span<std::uint8_t> block) const
{
    return m_Native->Checked(
        [&](const CFileDescriptor& node) {
            return sendGetLogPage(node, logIdentifier, offset, lengthOf(logIdentifier, offset, block.size()),
                                  block);
        },
        block);
}

} // namespace TLXX::Linux
