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

/** What was known at last of one subject: whether a condition holds, a step, a figure, or a text. */
struct Remembered
{
    std::variant<bool, std::uint64_t, std::string> m_Value;
    std::uint64_t m_Time = 0; ///< the last look that told it, in milliseconds since 1970

    friend bool operator==(const Remembered&, const Remembered&) = default;
};

/** A drive as the last look left it. */
struct DriveState
{
    std::string m_Key;
    Cli::DriveIdentity m_Drive;
    std::map<Kind, Remembered> m_Known; ///< what was never known is not in it

    friend bool operator==(const DriveState&, const DriveState&) = default;
};

/** All that one look hands on to the next. Plain data; a new one has seen nothing. */
struct State
{
    std::optional<std::uint64_t> m_Time; ///< of the last look; none: there was none
    std::vector<DriveState> m_Drives;    ///< in the order of that look

    friend bool operator==(const State&, const State&) = default;
};

} // namespace Host::Journal
