#pragma once

#include <TLXX/Export.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace TLXX {

/** Where a controller sits on the PCI buses. */
struct CPciLocation
{
    std::int32_t m_Segment = 0;
    std::int32_t m_Bus = 0;
    std::int32_t m_Device = 0;
    std::int32_t m_Function = 0;

    /** The location in an address such as "0000:01:00.0" (hexadecimal); nothing for any other text. */
    TLXX_EXPORT static std::optional<CPciLocation> Parse(std::string_view address);

    /** The address, such as "0000:01:00.0". */
    TLXX_EXPORT std::string Text() const;

    friend bool operator==(const CPciLocation&, const CPciLocation&) = default;
};

} // namespace TLXX
