#pragma once

#include "Journal/Entry.h"

#include <cstdint>

namespace Host::Journal {

/** An entry as the service's journal keeps it. */
struct NumberedEntry
{
    std::uint64_t m_Number = 0; ///< counts from 1, without gaps
    Entry m_Entry;

    friend bool operator==(const NumberedEntry&, const NumberedEntry&) = default;
};

} // namespace Host::Journal
