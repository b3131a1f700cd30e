#pragma once

#include <TLXX/Export.h>

#include <cstdint>
#include <memory>
#include <span>

namespace TLXX::Linux {

/** The one `ioctl` request that these commands need, so that a process can be restricted to it. */
inline constexpr std::uint32_t CONTROLLER_IOCTL = 0xC0484E41;

/**
 * An open controller, identified by numbers, for commands that only read. After it has gone, every command
 * fails, even if another controller now has its name. For use by one thread.
 *
 * The commands return a status, like the queries of `NvmeQuery.h`. Fill the block with zeros before a
 * command. After a failed command, ignore its content.
 */
class TLXX_EXPORT CControllerNode
{
public:
    /** Opens nvme`number`, if its node in sysfs still has the number `node`. */
    CControllerNode(std::uint32_t number, std::uint64_t node);
    ~CControllerNode();
    CControllerNode(const CControllerNode&) = delete;
    CControllerNode& operator=(const CControllerNode&) = delete;

    /** 0, or the reason why every command fails. `STATUS_NO_DEVICE`: it has gone. */
    std::uint32_t Status() const;

    /** Identify, CNS 01h. The block has 4096 bytes. */
    std::uint32_t IdentifyController(std::span<std::uint8_t> block) const;
    /** Identify, CNS 00h, of a namespace. The block has 4096 bytes. */
    std::uint32_t IdentifyNamespace(std::uint32_t namespaceId, std::span<std::uint8_t> block) const;
    /**
     * Get Log Page `logIdentifier`, from byte `offset` of the page. Offset and size are multiples of 4; the
     * size is 4 to 4096.
     */
    std::uint32_t LogPage(std::uint8_t logIdentifier, std::uint32_t offset,
                          std::span<std::uint8_t> block) const;

private:
    struct Native;
    std::unique_ptr<const Native> m_Native;
};

} // namespace TLXX::Linux
