#pragma once

#include <TLXX/Export.h>

#include <cstdint>

namespace TLXX {

/** Instants as calendar dates. */
class TLXX_EXPORT CSystemTime_Win
{
public:
    /** The UTC calendar date of an instant in milliseconds since 1970. Years above 9999 come back as
     * 9999-12-31. */
    static void GetDate(std::uint64_t instant, std::int32_t& year, std::int32_t& month, std::int32_t& day);
};

} // namespace TLXX
