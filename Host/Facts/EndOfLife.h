#pragma once

#include "Facts/Drives.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Host::Cli {

/**
 * The figures from which the end-of-life date of an adapter's drive was computed. They assume that the drive
 * is used as up to now.
 */
struct EndOfLife
{
    /** What ends first. */
    enum class Limit
    {
        None,    ///< not known: there are no figures to compute from, and the date is the latest that is
                 ///< shown
        Beyond,  ///< nothing ends within the time that is computed; the date is the latest that is shown
        Writing, ///< the amount of data that may be written ends first
        Wear,    ///< the drive's own count of wear ends first
        Worn,    ///< by its own count the drive is worn out already, whatever the date says
    };

    std::uint64_t m_AdapterId = 0;
    std::string m_Date;                 ///< year-month-day, as the plug-in shows it
    std::uint64_t m_RemainingHours = 0; ///< until the limit; 0 when it is reached
    std::uint64_t m_PowerOnHours = 0;   ///< the time in which the other figures came about
    std::optional<Amount> m_DataWritten;
    std::optional<std::uint64_t> m_Rating; ///< TiB that may be written; none for a model without a known
                                           ///< rating
    /** Percent of the rated amount that is written; set for a model with a rating. May exceed 100. */
    std::optional<std::int32_t> m_Endurance;
    /** Percent of its life that the drive itself counts as used; set only if it decides. May exceed 100. */
    std::optional<std::uint64_t> m_Wear;
    Limit m_Limit = Limit::None;
    bool m_DateTooLate = false; ///< whether this wear decides but the date does not take it into account

    friend bool operator==(const EndOfLife&, const EndOfLife&) = default;
};

/**
 * The figures for a drive's date, from its last health log. Nothing when there is no date, no such log, or no
 * count of hours in it.
 */
std::optional<EndOfLife> explainEndOfLife(const Drive& drive);

/** These figures in sentences. */
std::string endOfLifeText(const EndOfLife& end);

} // namespace Host::Cli
