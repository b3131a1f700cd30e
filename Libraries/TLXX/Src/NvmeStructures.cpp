#include <TLXX/NvmeStructures.h>
#include <TLXX/NvmeText.h>

#include <algorithm>
#include <limits>
#include <span>
#include <type_traits>

namespace TLXX {
namespace {

constexpr std::size_t VENDOR_TAG_OFFSET = 3100 - offsetof(NVME_IDENTIFY_CONTROLLER, VS);
constexpr std::size_t VENDOR_TAG_SIZE = 8;

// NVMe has no blocks below 512 bytes. A size above 2 GiB is a fault of the drive.
constexpr unsigned SMALLEST_BLOCK_SHIFT = 9;
constexpr unsigned LARGEST_BLOCK_SHIFT = 31;

// With up to 16 formats bits 5 and 6 of FLBAS are reserved, and a drive may set them to anything.
constexpr unsigned FORMATS_OF_SHORT_INDEX = 16;

} // namespace

std::string NVME_IDENTIFY_CONTROLLER::sModelNumber() const
{
    return boundedText(MN);
}

std::string NVME_IDENTIFY_CONTROLLER::sSerialNumber() const
{
    return boundedText(SN);
}

std::string NVME_IDENTIFY_CONTROLLER::sFirmwareRevision() const
{
    return boundedText(FR);
}

std::string NVME_IDENTIFY_CONTROLLER::sVendorTag() const
{
    return boundedText(std::span(VS).subspan(VENDOR_TAG_OFFSET, VENDOR_TAG_SIZE));
}

std::uint64_t NVME_IDENTIFY_CONTROLLER::Capacity(const NVME_IDENTIFY_NAMESPACE& name_space) const
{
    constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();
    const std::uint64_t blockSize = name_space.LBASize();
    if (blockSize != 0 && name_space.NSZE > largest / blockSize)
        return largest;
    return name_space.NSZE * blockSize;
}

std::uint64_t NVME_IDENTIFY_NAMESPACE::LBASize() const
{
    const unsigned formats = NLBAF + 1U;
    unsigned index = FLBAS & 0x0FU;
    if (formats > FORMATS_OF_SHORT_INDEX)
        index |= (FLBAS & 0x60U) >> 1U;
    if (index >= formats)
        return 0;
    const unsigned shift = LBAF[index].LBADS;
    if (shift < SMALLEST_BLOCK_SHIFT || shift > LARGEST_BLOCK_SHIFT)
        return 0;
    return std::uint64_t{1} << shift;
}

bool NVME_SMART_HEALTH_INFORMATION_LOG::Filled() const
{
    static_assert(std::has_unique_object_representations_v<NVME_SMART_HEALTH_INFORMATION_LOG>);
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(this);
    return std::any_of(bytes, bytes + sizeof *this, [](std::uint8_t byte) { return byte != 0; });
}

} // namespace TLXX
