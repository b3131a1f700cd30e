#include "AdminCommand.h"

#include "NvmeStatus.h"

#include <TLX/Thread.h>
#include <TLXX/Linux/ControllerNode.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <stdexcept>

#include <linux/nvme_ioctl.h>
#include <sys/ioctl.h>

namespace TLXX::Linux {
namespace {

static_assert(sizeof(nvme_admin_cmd) == 72);
static_assert(offsetof(nvme_admin_cmd, opcode) == 0);
static_assert(offsetof(nvme_admin_cmd, nsid) == 4);
static_assert(offsetof(nvme_admin_cmd, addr) == 24);
static_assert(offsetof(nvme_admin_cmd, data_len) == 36);
static_assert(offsetof(nvme_admin_cmd, cdw10) == 40);
static_assert(offsetof(nvme_admin_cmd, cdw11) == 44);
static_assert(offsetof(nvme_admin_cmd, cdw12) == 48);
static_assert(offsetof(nvme_admin_cmd, timeout_ms) == 64);
static_assert(NVME_IOCTL_ADMIN_CMD == CONTROLLER_IOCTL);

constexpr std::uint8_t OPCODE_GET_LOG_PAGE = 0x02;
constexpr std::uint8_t OPCODE_IDENTIFY = 0x06;
constexpr std::uint32_t WHOLE_CONTROLLER = 0xFFFFFFFF;
constexpr std::uint32_t TIMEOUT_MS = 10'000;

using Mark = std::array<std::uint8_t, 8>;
constexpr Mark NOT_TRANSFERRED = {0x5B, 0xE1, 0x0C, 0x97, 0xA6, 0x3D, 0xF8, 0x42};

constexpr std::uint32_t logPageWord(std::uint8_t logIdentifier, std::size_t size)
{
    const std::size_t dwords = size / sizeof(std::uint32_t) - 1;
    return logIdentifier | static_cast<std::uint32_t>(dwords << 16U);
}

std::uint32_t send(const CFileDescriptor& node, nvme_admin_cmd& command)
{
    if (node.Status() != STATUS_SUCCESS)
        return node.Status();
    const int result = TLX::Threading::interruptibly(
        [descriptor = node.Get(), &command] { return ::ioctl(descriptor, NVME_IOCTL_ADMIN_CMD, &command); });
    if (result < 0)
        return static_cast<std::uint32_t>(errno);
    return result == 0 ? STATUS_SUCCESS : STATUS_FROM_DRIVE | static_cast<std::uint32_t>(result);
}

std::uint32_t read(const CFileDescriptor& node, nvme_admin_cmd command, ELength length,
                   std::span<std::uint8_t> block)
{
    if (block.size() > LARGEST_BLOCK)
        throw std::length_error("a block is larger than a command may transfer");
    const bool marked = length == ELength::exact && block.size() >= NOT_TRANSFERRED.size();
    const std::span<std::uint8_t> tail = block.last(marked ? NOT_TRANSFERRED.size() : 0);
    // The kernel reports no length. It lets the drive write into this memory itself, so a mark that is still
    // at the end shows that the drive stopped before it. When the kernel has to copy instead, this cannot be
    // seen.
    std::copy_n(NOT_TRANSFERRED.begin(), tail.size(), tail.begin());

    command.addr = reinterpret_cast<std::uintptr_t>(block.data());
    command.data_len = static_cast<std::uint32_t>(block.size());
    command.timeout_ms = TIMEOUT_MS;
    const std::uint32_t status = send(node, command);
    if (status != STATUS_SUCCESS)
        return status;
    return marked && std::equal(tail.begin(), tail.end(), NOT_TRANSFERRED.begin()) ? STATUS_SHORT_TRANSFER
                                                                                   : STATUS_SUCCESS;
}

} // namespace

std::uint32_t sendIdentify(const CFileDescriptor& node, EIdentify structure, std::uint32_t namespaceId,
                           std::span<std::uint8_t> block)
{
    nvme_admin_cmd command{};
    command.opcode = OPCODE_IDENTIFY;
    command.nsid = namespaceId;
    command.cdw10 = static_cast<std::uint8_t>(structure);
    return read(node, command, ELength::exact, block);
}

std::uint32_t sendGetLogPage(const CFileDescriptor& node, std::uint8_t logIdentifier, std::uint32_t offset,
                             ELength length, std::span<std::uint8_t> block)
{
    nvme_admin_cmd command{};
    command.opcode = OPCODE_GET_LOG_PAGE;
    command.nsid = WHOLE_CONTROLLER;
    command.cdw10 = logPageWord(logIdentifier, block.size());
    command.cdw12 = offset;
    return read(node, command, length, block);
}

} // namespace TLXX::Linux
