#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace NAMESPACE_Ostrel {

inline constexpr std::uint16_t PCI_VENDOR_INTEL = 0x8086;

/** The name of a known maker of drives by its PCI vendor identifier; empty for any other. */
std::string_view vendorName(std::uint16_t pciVendorId);

/**
 * An adapter's display name: its maker, compared without regard to case, and a text that distinguishes it
 * from the others.
 */
std::string adapterDisplayName(std::string_view vendor, const std::string& distinction);

} // namespace NAMESPACE_Ostrel
