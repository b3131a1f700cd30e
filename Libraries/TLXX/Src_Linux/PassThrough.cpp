#include "DeviceTable.h"
#include "Disk.h"
#include "NvmeStatus.h"

#include <TLX/Thread.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <type_traits>

#include <linux/nvme_ioctl.h>
#include <sys/ioctl.h>

namespace TLXX {
namespace {

static_assert(sizeof(nvme_admin_cmd) == 72);
static_assert(offsetof(nvme_admin_cmd, opcode) == 0);
static_assert(offsetof(nvme_admin_cmd, nsid) == 4);
static_assert(offsetof(nvme_admin_cmd, addr) == 24);
static_assert(offsetof(nvme_admin_cmd, data_len) == 36);
static_assert(offsetof(nvme_admin_cmd, cdw10) == 40);
static_assert(offsetof(nvme_admin_cmd, cdw11) == 44);
static_assert(offsetof(nvme_admin_cmd, timeout_ms) == 64);
static_assert(NVME_IOCTL_ADMIN_CMD == 0xC0484E41);

constexpr std::uint8_t OPCODE_GET_LOG_PAGE = 0x02;
constexpr std::uint8_t OPCODE_IDENTIFY = 0x06;
constexpr std::uint32_t CNS_NAMESPACE = 0x00;
constexpr std::uint32_t CNS_CONTROLLER = 0x01;
constexpr std::uint8_t LOG_HEALTH = 0x02;
constexpr std::uint32_t WHOLE_CONTROLLER = 0xFFFFFFFF;
constexpr std::uint32_t TIMEOUT_MS = 10'000;

using Mark = std::array<std::uint8_t, 8>;
constexpr Mark NOT_TRANSFERRED = {0x5B, 0xE1, 0x0C, 0x97, 0xA6, 0x3D, 0xF8, 0x42};

/** Whether a drive must fill the whole block. Pages that vendors define may be shorter than ours. */
enum class ELength
{
    exact,
    atMost
};

constexpr std::uint32_t logPageWord(std::uint8_t logIdentifier, std::size_t size)
{
    const std::size_t dwords = size / sizeof(std::uint32_t) - 1;
    return logIdentifier | static_cast<std::uint32_t>(dwords << 16U);
}

std::uint32_t send(const Linux::CFileDescriptor& node, nvme_admin_cmd& command)
{
    if (node.Status() != STATUS_SUCCESS)
        return node.Status();
    const int result = TLX::Threading::interruptibly(
        [descriptor = node.Get(), &command] { return ::ioctl(descriptor, NVME_IOCTL_ADMIN_CMD, &command); });
    if (result < 0)
        return static_cast<std::uint32_t>(errno);
    return result == 0 ? STATUS_SUCCESS : STATUS_FROM_DRIVE | static_cast<std::uint32_t>(result);
}

template<typename Block>
std::uint32_t read(const Linux::CFileDescriptor& node, nvme_admin_cmd command, ELength length, Block& target)
{
    static_assert(std::is_trivially_copyable_v<Block>);
    std::array<std::uint8_t, sizeof(Block)> data{};
    std::uint8_t* const tail = data.data() + data.size() - NOT_TRANSFERRED.size();
    // The kernel reports no length. It lets the drive write into this memory itself, so a mark that is still
    // at the end shows that the drive stopped before it. When the kernel has to copy instead, this cannot be
    // seen.
    if (length == ELength::exact)
        std::memcpy(tail, NOT_TRANSFERRED.data(), NOT_TRANSFERRED.size());

    command.addr = reinterpret_cast<std::uintptr_t>(data.data());
    command.data_len = sizeof(Block);
    command.timeout_ms = TIMEOUT_MS;
    const std::uint32_t status = send(node, command);
    if (status != STATUS_SUCCESS)
        return status;
    if (length == ELength::exact && std::memcmp(tail, NOT_TRANSFERRED.data(), NOT_TRANSFERRED.size()) == 0)
        return STATUS_SHORT_TRANSFER;
    std::memcpy(&target, data.data(), data.size());
    return STATUS_SUCCESS;
}

template<typename Block>
std::uint32_t identify(const Linux::CFileDescriptor& node, std::uint32_t structure, std::uint32_t namespaceId,
                       Block& target)
{
    nvme_admin_cmd command{};
    command.opcode = OPCODE_IDENTIFY;
    command.nsid = namespaceId;
    command.cdw10 = structure;
    const std::uint32_t status = read(node, command, ELength::exact, target);
    // The path may now lead to another disk than the one of the last enumeration.
    if (status != STATUS_SUCCESS)
        Linux::deviceTable().LookAnew();
    return status;
}

template<typename Block>
std::uint32_t logPage(const Linux::CFileDescriptor& node, std::uint8_t logIdentifier, ELength length,
                      Block& target)
{
    nvme_admin_cmd command{};
    command.opcode = OPCODE_GET_LOG_PAGE;
    command.nsid = WHOLE_CONTROLLER;
    command.cdw10 = logPageWord(logIdentifier, sizeof(Block));
    return read(node, command, length, target);
}

/** Opens the controller's node. Refuses another controller that has taken its name. */
Linux::CFileDescriptor openOwner(const std::optional<Linux::CDiskOwner>& owner)
{
    if (!owner)
        return Linux::CFileDescriptor::Failed(ENODEV);
    Linux::CFileDescriptor node(Linux::controllerNode(owner->m_Instance).c_str());
    // While its sysfs node exists, no other controller has this name. So the controller that was opened is
    // this one if the node still exists now.
    if (node.Status() == STATUS_SUCCESS && !Linux::controllerExists(owner->m_Instance, owner->m_Node)) {
        Linux::deviceTable().LookAnew();
        return Linux::CFileDescriptor::Failed(ENODEV);
    }
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
    return identify(m_Node, CNS_CONTROLLER, 0, controller);
}

std::uint32_t Platform::CDisk::IdentifyNamespace(NVME_IDENTIFY_NAMESPACE& name_space)
{
    return identify(m_Node, CNS_NAMESPACE, m_NamespaceId, name_space);
}

std::uint32_t Platform::CDisk::SmartHealthLog(NVME_SMART_HEALTH_INFORMATION_LOG& log)
{
    return logPage(m_Node, LOG_HEALTH, ELength::exact, log);
}

std::uint32_t Platform::CDisk::VendorLogPage(std::uint8_t logIdentifier, TLXX::VendorLogPage& page)
{
    return logPage(m_Node, logIdentifier, ELength::atMost, page);
}

} // namespace TLXX
