#pragma once

#include "Base/Moment.h"
#include "Facts/DriveIdentity.h"
#include "Journal/Counter.h"
#include "Journal/Entry.h"

#include <boost/container/flat_map.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace Host::Journal {

/**
 * The last known state of one subject: whether a condition holds, a number of passed steps, a figure, or a
 * text.
 */
struct Remembered
{
    std::variant<bool, std::uint64_t, std::string> m_Value;
    std::uint64_t m_Time = 0; ///< the last look at which it was known, in milliseconds since 1970

    friend bool operator==(const Remembered&, const Remembered&) = default;
};

/** The last known figure of a counter. */
struct Figure
{
    std::uint64_t m_Value = 0;
    std::uint64_t m_Time = 0; ///< the last look at which it was known, in milliseconds since 1970

    friend bool operator==(const Figure&, const Figure&) = default;
};

/** A table of few rows. All of them lie in one block, because the state of every drive is copied at each
 * look. */
template<typename Key, typename Value>
using Table = boost::container::flat_map<Key, Value>;

using Figures = Table<Counter, Figure>;

/** The state of a drive after the last look. */
struct DriveState
{
    std::string m_Key;
    Cli::DriveIdentity m_Drive;
    Table<Kind, Remembered> m_Known;   ///< does not contain what was never known
    Figures m_Counters;                ///< the same
    Table<Kind, std::uint64_t> m_Told; ///< when news that may be told only now and then was told last
    std::uint64_t m_Since = 0;         ///< the last look without it; 0: it was there at the first one

    friend bool operator==(const DriveState&, const DriveState&) = default;
};

/** A drive that was removed and may come back. */
struct GoneDrive
{
    Cli::DriveIdentity m_Drive;
    Figures m_Counters;
    std::uint64_t m_Time = 0; ///< the first look without it

    friend bool operator==(const GoneDrive&, const GoneDrive&) = default;
};

/** Everything that one look passes on to the next. Plain data. A new object knows no drive. */
struct State
{
    std::optional<std::uint64_t> m_Time; ///< time of the last look; none: there was no look
    std::vector<DriveState> m_Drives;    ///< in the order of that look
    std::vector<GoneDrive> m_Gone;       ///< the one that was removed last at the end
    std::optional<Moment> m_Moment;      ///< of the last look, start or end of the service
    std::uint64_t m_BootTime = 0; ///< the first moment that is known to belong to the boot of `m_Moment`
    bool m_Runs = false;          ///< whether the service has started and not ended

    friend bool operator==(const State&, const State&) = default;
};

} // namespace Host::Journal
