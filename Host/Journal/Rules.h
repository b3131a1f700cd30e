#pragma once

#include "Facts/Observation.h"
#include "Journal/Entry.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>

// The rules of the journal, one row for each kind of news. In entries, the texts follow the drive's name.
namespace Host::Journal {

/** A rule for a condition that holds for some time. */
struct ConditionRule
{
    Kind m_Kind;
    /**
     * Whether it holds now. `before` says whether it held at the last look. Nothing when that is not known.
     */
    std::optional<bool> (*m_Holds)(const Cli::ObservedDrive&, bool before);
    Severity m_Severity;
    std::optional<std::uint32_t> m_Event; ///< the plug-in's event for its beginning
    bool m_Warning; ///< whether it is a warning of the drive; its end may then be the end of all warnings
    const char* m_Text;
    const char* m_EndText;
};

std::span<const ConditionRule> conditionRules();

/** One degree of a condition. */
struct Degree
{
    Severity m_Severity;
    std::optional<std::uint32_t> m_Event; ///< the plug-in's event for its beginning
    const char* m_Text;
};

/** A rule for a condition that has degrees. A change to another degree is told like a beginning. */
struct DegreeRule
{
    Kind m_Kind;
    /** The degree that holds now, counted from 1. 0 means none. Nothing when it is not known. */
    std::optional<std::uint64_t> (*m_Degree)(const Cli::ObservedDrive&);
    std::span<const Degree> m_Degrees;
    const char* m_EndText;
};

std::span<const DegreeRule> degreeRules();

/** Whether the drive has no warning, as far as known. Then the plug-in reports that all warnings are over. */
bool warnsOfNothing(const Cli::ObservedDrive& drive);

/** A step of a figure. Passing it is told once. */
struct Step
{
    std::int32_t m_Limit;
    Severity m_Severity;
};

struct StepRule
{
    Kind m_Kind;
    std::optional<std::int32_t> Cli::ObservedDrive::*m_Figure; ///< percent
    bool m_Rises;                                              ///< whether steps are passed upwards
    std::span<const Step> m_Steps;                             ///< in the order in which the figure passes
                                                               ///< them
    std::optional<Kind> m_Unless;                              ///< nothing is told while this condition
                                                               ///< holds, because it already says enough
    std::string (*m_Text)(std::int32_t figure);

    /** The number of steps that `figure` has passed. */
    std::uint64_t passed(std::int32_t figure) const;
};

std::span<const StepRule> stepRules();

/** A rule for a figure that changes. */
struct FigureRule
{
    Kind m_Kind;
    std::optional<std::uint64_t> Cli::ObservedDrive::*m_Figure;
    bool m_OnlyGrowth; ///< whether a lower figure is adopted without an entry
    Severity m_Severity;
    std::optional<std::uint32_t> m_Event;
    std::string (*m_Text)(std::uint64_t before, std::uint64_t now);
    /** For a drive that is first seen with a figure above 0. Null when that is no news. */
    std::string (*m_PresentText)(std::uint64_t now);
    /** Milliseconds before the next change is told. Changes until then are told together. 0: at once. */
    std::uint64_t m_Pause = 0;
};

std::span<const FigureRule> figureRules();

/** A rule for a text that changes. An empty text is not known. */
struct TextRule
{
    Kind m_Kind;
    const std::string& (*m_Of)(const Cli::ObservedDrive&);
    Severity m_Severity;
    const char* m_Text; ///< followed by "from A to B."
};

std::span<const TextRule> textRules();

} // namespace Host::Journal
