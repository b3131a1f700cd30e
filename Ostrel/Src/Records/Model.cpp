#include "Records/Model.h"

#include <algorithm>
#include <cstddef>

namespace NAMESPACE_Ostrel {
namespace {

struct CVendorPrefix
{
    std::string_view m_Vendor;
    std::string_view m_Prefix;
    std::size_t m_Cut; ///< including the separator after the prefix, if there is one
};

constexpr CVendorPrefix PREFIXES[] = {
    {"INTEL", "INTEL", 6},
    {"SAMSUNG", "SAMSUNG", 8},
    {"MICRON", "MICRON_7450_", 12},
};

} // namespace

bool IsKnownModelFamily(std::string_view model)
{
    return model.starts_with("INTEL SSDPED") || model.starts_with("SAMSUNG MZP");
}

std::string modelText(std::string_view vendor, std::string_view model)
{
    for (const CVendorPrefix& prefix : PREFIXES)
        if (vendor == prefix.m_Vendor && model.starts_with(prefix.m_Prefix))
            return std::string(model.substr(prefix.m_Cut));
    return std::string(model);
}

std::string rowModelText(std::string_view model)
{
    for (const CVendorPrefix& prefix : PREFIXES)
        if (model.starts_with(prefix.m_Prefix))
            return std::string(model.substr(std::min(prefix.m_Cut, model.size())));
    return std::string(model);
}

} // namespace NAMESPACE_Ostrel
