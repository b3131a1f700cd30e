#pragma once

#include <cstdint>

// How the 32 bits of a query's status are divided. Errors of the operating system keep their own number,
// which is at most 0xFFFF.
namespace TLXX {

constexpr std::uint32_t STATUS_SUCCESS = 0;

/** OR-ed with the status in the drive's completion. */
constexpr std::uint32_t STATUS_FROM_DRIVE = 0x10000;

/** The drive reported success but filled less than the block that was asked for. */
constexpr std::uint32_t STATUS_SHORT_TRANSFER = 0x20000;

/** The system placed the drive's data outside of the bytes that it wrote. */
constexpr std::uint32_t STATUS_BAD_ANSWER = 0x20001;

/** The drive reported success, but the page was never filled. */
constexpr std::uint32_t STATUS_EMPTY_PAGE = 0x20002;

} // namespace TLXX
