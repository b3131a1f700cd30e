#include "Records/Vendor.h"

#include "Records/Text.h"

#include <algorithm>
#include <iterator>

namespace NAMESPACE_Ostrel {
namespace {

struct CVendor
{
    std::uint16_t m_PciVendorId;
    std::string_view m_Name;
    std::string_view m_DisplayName;
};

constexpr CVendor VENDORS[] = {
    {PCI_VENDOR_INTEL, "INTEL", "NVMe Intel PCI Adapter"},
    {0x144D, "SAMSUNG", "NVMe Samsung PCI Adapter"},
    {0x1E0F, "KIOXIA", "NVMe Kioxia PCI Adapter"},
    {0x1344, "MICRON", "NVMe Micron PCI Adapter"},
};

} // namespace

std::string_view vendorName(std::uint16_t pciVendorId)
{
    const auto* vendor = std::find_if(std::begin(VENDORS), std::end(VENDORS), [&](const CVendor& candidate) {
        return candidate.m_PciVendorId == pciVendorId;
    });
    return vendor == std::end(VENDORS) ? std::string_view() : vendor->m_Name;
}

std::string adapterDisplayName(std::string_view vendor, const std::string& distinction)
{
    const auto* known = std::find_if(std::begin(VENDORS), std::end(VENDORS), [&](const CVendor& candidate) {
        return equalIgnoringCase(candidate.m_Name, vendor);
    });
    const std::string_view kind = known == std::end(VENDORS) ? "NVMe PCI Adapter" : known->m_DisplayName;
    return std::string(kind) + " (" + distinction + ")";
}

} // namespace NAMESPACE_Ostrel
