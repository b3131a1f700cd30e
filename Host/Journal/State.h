#pragma once

#include "Facts/DriveIdentity.h"
#include "Journal/Entry.h"

#include <cstdint>
#include <map>
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

/** The state of a drive after the last look. */
struct DriveState
{
    std::string m_Key;
    Cli::DriveIdentity m_Drive;
    std::map<Kind, Remembered> m_Known; ///< does not contain what was never known

    friend bool operator==(const DriveState&, const DriveState&) = default;
};

/** Everything that one look passes on to the next. Plain data. A new object knows no drive. */
struct State
{
    std::optional<std::uint64_t> m_Time; ///< time of the last look; none: there was no look
    std::vector<DriveState> m_Drives;    ///< in the order of that look

    friend bool operator==(const State&, const State&) = default;
};

} // namespace Host::Journal
