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
    const char* m_DisplayName;
};

constexpr CVendor VENDORS[] = {
    {PCI_VENDOR_INTEL, "INTEL", "NVMe Intel PCI Adapter (%s)"},
    {0x144D, "SAMSUNG", "NVMe Samsung PCI Adapter (%s)"},
    {0x1E0F, "KIOXIA", "NVMe Kioxia PCI Adapter (%s)"},
    {0x1344, "MICRON", "NVMe Micron PCI Adapter (%s)"},
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
    const char* format = known == std::end(VENDORS) ? "NVMe PCI Adapter (%s)" : known->m_DisplayName;
    return formatted(format, distinction);
}

} // namespace NAMESPACE_Ostrel
