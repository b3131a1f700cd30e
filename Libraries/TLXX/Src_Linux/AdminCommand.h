#pragma once

#include "FileDescriptor.h"

#include <cstddef>
#include <cstdint>
#include <span>

// The two admin commands that are ever sent to a controller. Each blocks until the controller has answered,
// or the kernel has given it up, and returns a status as the queries of `NvmeQuery.h` do. The controller
// writes to the block itself, so the block must have zeros before, and is worth nothing after a failure. No
// block is larger than `LARGEST_BLOCK` bytes; a larger one throws `std::length_error`.
namespace TLXX::Linux {

inline constexpr std::size_t LARGEST_BLOCK = 4096;

/** Whether a drive must fill the whole block. Pages that vendors define may be shorter than ours. */
enum class ELength
{
    exact,
    atMost
};

/** What Identify asks for: its field CNS. */
enum class EIdentify : std::uint8_t
{
    nameSpace = 0x00,
    controller = 0x01
};

/** Identify. The block must be filled. */
std::uint32_t sendIdentify(const CFileDescriptor& node, EIdentify structure, std::uint32_t namespaceId,
                           std::span<std::uint8_t> block);

/** Get Log Page of the whole controller, from byte `offset` of the page. Offset and size are multiples of 4.
 */
std::uint32_t sendGetLogPage(const CFileDescriptor& node, std::uint8_t logIdentifier, std::uint32_t offset,
                             ELength length, std::span<std::uint8_t> block);

} // namespace TLXX::Linux
