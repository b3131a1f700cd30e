#pragma once

#include "Facts/Drives.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Host::Cli {

/** What the end-of-life date of an adapter's drive was computed from: its use so far, taken to go on. */
struct EndOfLife
{
    /** What comes to its end first. */
    enum class Limit
    {
        None,    ///< nobody knows: nothing is there to compute from, and the date is the latest that is shown
        Beyond,  ///< neither within the time that is looked ahead; the date is the latest that is shown
        Writing, ///< the amount of data that may be written
        Wear,    ///< what the drive itself counts as wear
        Worn,    ///< by the drive's own count its life is used up, whatever the date
    };

    std::uint64_t m_AdapterId = 0;
    std::string m_Date;                 ///< year-month-day, as the plug-in shows it
    std::uint64_t m_RemainingHours = 0; ///< until the limit; 0 when it is over
    std::uint64_t m_PowerOnHours = 0;   ///< in which the rest came about
    std::optional<Amount> m_DataWritten;
    std::optional<std::uint64_t> m_Rating;   ///< TiB that may be written; none for a model without a rating
    std::optional<std::int32_t> m_Endurance; ///< percent of the rating that was written
    /** Percent of life that the drive counts; there when it decides. May pass 100. */
    std::optional<std::uint64_t> m_Wear;
    Limit m_Limit = Limit::None;
    bool m_DateTooLate = false; ///< whether the date takes no account of the wear that decides

    friend bool operator==(const EndOfLife&, const EndOfLife&) = default;
};

/** The figures behind a drive's date, from the health log that it gave last; none when there is no date, no
 * such log, or no count of hours in it. */
std::optional<EndOfLife> explainEndOfLife(const Drive& drive);

/** Sentences about them. */
std::string endOfLifeText(const EndOfLife& end);

} // namespace Host::Cli
