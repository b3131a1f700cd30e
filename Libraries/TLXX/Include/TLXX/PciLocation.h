#pragma once

#include <cstdint>

namespace TLXX {

/** Where a controller sits on the PCI buses. */
struct CPciLocation
{
    std::int32_t m_Segment = 0;
    std::int32_t m_Bus = 0;
    std::int32_t m_Device = 0;
    std::int32_t m_Function = 0;

    friend bool operator==(const CPciLocation&, const CPciLocation&) = default;
};

} // namespace TLXX
