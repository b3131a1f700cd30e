#pragma once

#include "Facts/Drives.h"

#include <PI/Object.h>

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Host::Cli {

/** What the end-of-life date of an adapter's drive was computed from: its use so far, taken to go on. */
struct EndOfLife
{
    /** What comes to its end first. */
    enum class Limit
    {
        None, ///< neither: the drive is unrated or hardly used, and the date stands for "not to be foreseen"
        Writing, ///< the amount of data that may be written
        Wear,    ///< what the drive itself counts as wear
    };

    std::uint64_t m_AdapterId = 0;
    std::string m_Date;                 ///< year-month-day
    std::uint64_t m_RemainingHours = 0; ///< until then; 0 when it is over
    std::uint64_t m_PowerOnHours = 0;   ///< in which the rest came about
    std::optional<Amount> m_DataWritten;
    std::optional<std::uint64_t> m_Rating;   ///< TiB that may be written; none for a model without a rating
    std::optional<std::int32_t> m_Endurance; ///< percent of the rating that was written
    std::optional<std::uint64_t>
        m_Wear; ///< percent of life that the drive counts, about; known when it decides
    Limit m_Limit = Limit::None;

    friend bool operator==(const EndOfLife&, const EndOfLife&) = default;
};

/** The figures behind an adapter's date; none when it shows no date or no hours. */
std::optional<EndOfLife> explainEndOfLife(const PI::CObject& adapter);

/** Sentences about them. */
std::string endOfLifeText(const EndOfLife& end);

/** The figures for the documents of `list`. */
nlohmann::ordered_json endOfLifeJson(const EndOfLife& end);

/** A list for the documents of `show`. */
nlohmann::ordered_json endOfLifeJson(const std::vector<const PI::CObject*>& objects);

} // namespace Host::Cli
