#include "AdminCommand.h"
#include "DeviceTable.h"

#include <TLXX/Linux/ControllerNode.h>
#include <TLXX/NvmeStructures.h>

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
    CFileDescriptor m_Node;
};

CControllerNode::CControllerNode(std::uint32_t number, std::uint64_t node)
    : m_Native(std::make_unique<const Native>(Native{openController(number, node)}))
{}

CControllerNode::~CControllerNode() = default;

std::uint32_t CControllerNode::Status() const
{
    return m_Native->m_Node.Status();
}

std::uint32_t CControllerNode::IdentifyController(std::span<std::uint8_t> block) const
{
    return sendIdentify(m_Native->m_Node, EIdentify::controller, 0, block);
}

std::uint32_t CControllerNode::IdentifyNamespace(std::uint32_t namespaceId,
                                                 std::span<std::uint8_t> block) const
{
    return sendIdentify(m_Native->m_Node, EIdentify::nameSpace, namespaceId, block);
}

std::uint32_t CControllerNode::LogPage(std::uint8_t logIdentifier, std::uint32_t offset,
                                       std::span<std::uint8_t> block) const
{
    return sendGetLogPage(m_Native->m_Node, logIdentifier, offset,
                          lengthOf(logIdentifier, offset, block.size()), block);
}

} // namespace TLXX::Linux
